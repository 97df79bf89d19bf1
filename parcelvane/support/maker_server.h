// The maker's package web server, where the library's artwork is published.
// The library only reads from it over plain http; it keeps nothing there.
#pragma once

namespace parcelvane::maker {

// The server's host name.
inline constexpr char kPackageServerHost[] = "apt.tolbrenn.net";

// The icon shown beside the library's row in the host's Settings screen.
inline constexpr char kSettingsIconPath[] = "/apt/depict/ParcelvaneIcon-Small@2x.png";

}  // namespace parcelvane::maker
