// The library's settings: booleans in the host's standard user defaults. An
// absent key reads as false, so every feature is off after a fresh install.
#pragma once

class NSString;

namespace parcelvane::keys {

// The document menu accepts every data type and sends the picked file.
NSString* sendDocumentsEnabled();
// The attach menu offers a file browser over the file system.
NSString* sendFilesystemEnabled();
// The settings page shows the two feature switches.
NSString* docOptions();

}  // namespace parcelvane::keys
