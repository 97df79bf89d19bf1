// The app's container: its home folder with the platform's standard folders.
#pragma once

#include <string>

namespace messenger {

// ${XDG_STATE_HOME:-$HOME/.local/state}/parcelvane-messenger
std::string defaultHome();

// Makes the folder with Documents, Library/Preferences, Library/Caches and
// tmp, and clears the unfinished media copies of a killed run. Answers an
// error message, empty on success (also when only Library/Preferences could
// not be made: the app runs without saving).
std::string createContainer(const std::string& home);

// Makes the folders of the current device's document providers (by default
// "<home>/../DocumentProviders/iCloud Drive"), so that the document menu has
// somewhere to browse. Call once the process and the device are configured.
// Answers an error message, empty on success.
std::string createDocumentProviderFolders();

// The app bundle: the copy beside the program, else the source tree's.
std::string findBundle();

}  // namespace messenger
