// Whether what a folder's listing says of its entries may be believed.
//
// A listing tells the type of each entry, so that most need not be examined. Some file
// systems tell it wrongly: they list symbolic links as plain files (shares that emulate
// links, older drivers of foreign formats, whatever is made with FUSE may). A link that
// goes unnoticed would be a folder whose reports are lost, or the page under another
// name. So a listing counts only on file systems that are known to tell types truly.

#pragma once

#include <dirent.h>

// Whether the file system that the open folder lies on tells the types of its entries
// truly. One system call; false where it fails.
[[nodiscard]] bool tells_types_truly(DIR* listing);
