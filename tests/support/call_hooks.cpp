#include "support/call_hooks.h"

#include <utility>

namespace {

FileCall awaited_call = FileCall::Read;
std::uint64_t calls_left = 0;
std::function<void()> file_change;

std::string awaited_name;
std::function<void()> listing_change;

// A change may itself make calls that are wrapped, so it is disarmed first.
void run_once(std::function<void()>& change)
{
    std::exchange(change, nullptr)();
}

} // namespace

BeforeFileCall::BeforeFileCall(FileCall call, std::uint64_t number, std::function<void()> change)
{
    awaited_call = call;
    calls_left = number;
    file_change = std::move(change);
}

BeforeFileCall::~BeforeFileCall()
{
    file_change = nullptr;
}

bool BeforeFileCall::happened() const
{
    return file_change == nullptr;
}

AfterListing::AfterListing(std::string name, std::function<void()> change)
{
    awaited_name = std::move(name);
    listing_change = std::move(change);
}

AfterListing::~AfterListing()
{
    listing_change = nullptr;
}

bool AfterListing::happened() const
{
    return listing_change == nullptr;
}

void before_file_call(FileCall call)
{
    if (file_change != nullptr && call == awaited_call && --calls_left == 0) {
        run_once(file_change);
    }
}

void after_listing_call(std::string_view name)
{
    if (listing_change != nullptr && name == awaited_name) {
        run_once(listing_change);
    }
}
