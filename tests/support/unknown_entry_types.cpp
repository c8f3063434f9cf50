#include "support/unknown_entry_types.h"

#include <dirent.h>

namespace {

bool types_are_unknown = false;

} // namespace

extern "C" {
dirent* __real_readdir(DIR* listing);
dirent* __wrap_readdir(DIR* listing);

dirent* __wrap_readdir(DIR* listing)
{
    dirent* entry = __real_readdir(listing);
    if (entry != nullptr && types_are_unknown) {
        entry->d_type = DT_UNKNOWN;
    }
    return entry;
}
}

UnknownEntryTypes::UnknownEntryTypes()
{
    types_are_unknown = true;
}

UnknownEntryTypes::~UnknownEntryTypes()
{
    types_are_unknown = false;
}
