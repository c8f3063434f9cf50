#include <cstdint>
#include <utility>

#include <gtest/gtest.h>
#include <linux/magic.h>

#include "scan/listing_types.h"
#include "support/call_faults.h"

namespace {

// Whether listings are believed where the file system has this number, or cannot be asked.
bool believed(std::int64_t number, int answer = 0)
{
    const Interception told(fstatfs_call, [=](const auto&, int file, struct statfs* status) {
        EXPECT_GE(file, 0);
        status->f_type = static_cast<decltype(status->f_type)>(number);
        return answer;
    });
    DIR* listing = opendir("/");
    const bool result = tells_types_truly(listing);
    closedir(listing);
    return result;
}

} // namespace

TEST(TellsTypesTruly, HoldsForTheFileSystemsThatAreKnownToDoSo)
{
    for (const std::int64_t number : {EXT2_SUPER_MAGIC, EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC,
                                      TMPFS_MAGIC, SQUASHFS_MAGIC, NFS_SUPER_MAGIC}) {
        EXPECT_TRUE(believed(number)) << number;
    }
    // These fill 32 bits, which some machines take for a sign.
    for (const std::int64_t number : {BTRFS_SUPER_MAGIC, RAMFS_MAGIC, 0xE0F5E1E2U, 0xF2F52010U}) {
        EXPECT_TRUE(believed(number)) << number;
        EXPECT_TRUE(believed(number - (std::int64_t{1} << 32))) << number;
    }
}

TEST(TellsTypesTruly, FailsForAllOthersAndWhereTheSystemDoesNotSay)
{
    for (const std::int64_t number : std::initializer_list<std::int64_t>{
             0, FUSE_SUPER_MAGIC, CIFS_SUPER_MAGIC, SMB2_SUPER_MAGIC, OVERLAYFS_SUPER_MAGIC,
             V9FS_MAGIC, MSDOS_SUPER_MAGIC}) {
        EXPECT_FALSE(believed(number)) << number;
    }
    EXPECT_FALSE(believed(EXT4_SUPER_MAGIC, -1));
}
