// The device's data folder (--home) and the app's container inside it.
//
//   <home>/Container                        the app's home: Documents, Library, tmp
//   <home>/DocumentProviders/iCloud Drive   a document provider's files
//
// The providers sit beside the container, not in it: the host treats what
// lies in its container as its own (a file handed over from there is moved,
// not copied), and a provider's files belong to the user. Nothing is made
// outside <home>.
#pragma once

#include <string>

namespace messenger {

// ${XDG_STATE_HOME:-$HOME/.local/state}/parcelvane-messenger
std::string defaultHome();

// "<home>/Container", absolute.
std::string containerFolder(const std::string& home);

// Makes the container with Documents, Library/Preferences, Library/Caches
// and tmp, and clears the unfinished media copies of a killed run. Answers an
// error message, empty on success (also when only Library/Preferences could
// not be made: the app runs without saving).
std::string createContainer(const std::string& container);

// Makes the folders of the current device's document providers (by default
// "<home>/DocumentProviders/iCloud Drive", beside the container), so that the
// document menu has somewhere to browse. Call once the process and the
// device are configured. Answers an error message, empty on success.
std::string createDocumentProviderFolders();

// The app bundle: the copy beside the program, else the source tree's.
std::string findBundle();

}  // namespace messenger
