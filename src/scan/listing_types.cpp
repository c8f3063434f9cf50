#include "scan/listing_types.h"

#include <algorithm>
#include <cstdint>

#include <sys/vfs.h>

namespace {

// The numbers by which the kernel names file systems. These keep the type of each entry
// in the folder itself, or derive it from the same attributes that examining it gives.
//
// Overlay is left out on purpose, common as it is in containers: it hands on what the
// file systems below it say, and they may be any.
constexpr std::uint32_t EXT2_TO_4 = 0xEF53;
constexpr std::uint32_t XFS = 0x58465342;
constexpr std::uint32_t BTRFS = 0x9123683E;
constexpr std::uint32_t F2FS = 0xF2F52010;
constexpr std::uint32_t TMPFS = 0x01021994;
constexpr std::uint32_t RAMFS = 0x858458F6;
constexpr std::uint32_t SQUASHFS = 0x73717368;
constexpr std::uint32_t EROFS = 0xE0F5E1E2;
constexpr std::uint32_t NFS = 0x6969;

constexpr std::uint32_t TRUTHFUL[] = {EXT2_TO_4, XFS,      BTRFS, F2FS, TMPFS,
                                      RAMFS,     SQUASHFS, EROFS, NFS};

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
