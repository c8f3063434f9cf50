#include "support/unknown_entry_types.h"

#include <dirent.h>

#include "support/call_hooks.h"

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
    after_listing_call(entry != nullptr ? entry->d_name : "");
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
