// The icon of the library's Settings row, fetched from the maker's package
// server each time the row is built (there is no cache).
#pragma once

class UITableViewCell;

namespace parcelvane::hooks {

// Downloads the icon on the default global queue and, when data came back,
// sets the image made from it on the cell's image view on the main queue.
// A failed or empty download leaves the cell as it is, silently. The work
// keeps the cell alive until it is done.
void startSettingsIconDownload(UITableViewCell* cell);

}  // namespace parcelvane::hooks
