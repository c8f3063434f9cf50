#include "scan/listing_types.h"

#include <algorithm>
#include <cstdint>

#include <linux/magic.h>
#include <sys/vfs.h>

namespace {

// The numbers by which the kernel names file systems. These keep the type of each entry
// in the folder itself, or derive it from the same attributes that examining it gives.
//
// Overlay is left out on purpose, common as it is in containers: it hands on what the
// file systems below it say, and they may be any.
constexpr std::uint32_t TRUTHFUL[] = {
    EXT4_SUPER_MAGIC, // of ext2 and ext3, too
    XFS_SUPER_MAGIC,  BTRFS_SUPER_MAGIC, F2FS_SUPER_MAGIC,     TMPFS_MAGIC,
    RAMFS_MAGIC,      SQUASHFS_MAGIC,    EROFS_SUPER_MAGIC_V1, NFS_SUPER_MAGIC,
};

} // namespace

bool tells_types_truly(DIR* listing)
{
    struct statfs status = {};
    if (fstatfs(dirfd(listing), &status) != 0) {
        return false;
    }
    // The kernel's number has 32 bits; its type is wider, and signed, on some machines.
    const std::uint32_t number = static_cast<std::uint32_t>(status.f_type);
    return std::ranges::find(TRUTHFUL, number) != std::ranges::end(TRUTHFUL);
}
