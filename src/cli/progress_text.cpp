#include "cli/progress_text.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "core/append_all.h"

namespace {

constexpr std::uint64_t SECOND = 1000; // milliseconds, as all times
constexpr double LONGEST_GUESS = 48.0 * 3600 * SECOND;
constexpr std::uint64_t UNITS_UNTIL = 90; // of one unit before the next longer one is taken

// A number with commas between groups of three digits.
struct Grouped
{
    std::uint64_t number;
};

[[nodiscard]] bool append_part(BoundedText& text, Grouped grouped)
{
    std::array<char, 26> digits; // UINT64_MAX has 20 and 6 commas
    char* begin = digits.end();
    std::uint64_t rest = grouped.number;
    for (int count = 0; count == 0 || rest != 0; ++count) {
        if (count != 0 && count % 3 == 0) {
            *--begin = ',';
        }
        *--begin = static_cast<char>('0' + rest % 10);
        rest /= 10;
    }
    return bounded_text_append(text, {begin, static_cast<std::size_t>(digits.end() - begin)});
}

// Appends all of the parts, or none where they do not fit.
template <typename... Parts>
void append_if_it_fits(BoundedText& text, const Parts&... parts)
{
    const std::uint64_t length = text.length;
    if (!append_all(text, parts...)) {
        text.length = length;
        text.data[length] = '\0';
    }
}

// Of so many milliseconds, in the unit that a person would name.
void append_time_left(BoundedText& text, std::uint64_t time)
{
    std::uint64_t unit = SECOND;
    const char* name = " s left";
    for (const char* longer_unit : {" min left", " h left"}) {
        if (time >= UNITS_UNTIL * unit) {
            unit *= 60;
            name = longer_unit;
        }
    }
    const std::uint64_t rounded = std::max<std::uint64_t>((time + unit / 2) / unit, 1);
    append_if_it_fits(text, ", about ", Grouped{rounded}, name);
}

// Numbers of any size are divided: as doubles, none of them overflows.
void append_reading(BoundedText& text, const RunPosition& position)
{
    const double done = static_cast<double>(position.done);
    const double total = static_cast<double>(position.total);
    append_if_it_fits(text, ": ", Grouped{position.done}, " of ", Grouped{position.total});
    append_if_it_fits(text, " (", Grouped{static_cast<std::uint64_t>(done * 100 / total)}, " %)");
    if (position.done != 0 && position.stage_age >= SECOND) {
        const double left = static_cast<double>(position.stage_age) * (total - done) / done;
        if (left <= LONGEST_GUESS) {
            append_time_left(text, static_cast<std::uint64_t>(left));
        }
    }
}

} // namespace

void append_progress_text(BoundedText& text, const RunPosition& position)
{
    constexpr const char* NAMES[] = {"listing", "reading", "writing"};
    if (!bounded_text_append(text, NAMES[static_cast<std::size_t>(position.stage)])) {
        return;
    }
    if (position.stage == Stage::Listing) {
        append_if_it_fits(text, ": ", Grouped{position.done});
        append_if_it_fits(text, position.done == 1 ? " file" : " files");
    } else if (position.stage == Stage::Reading) {
        append_reading(text, position);
    }
}
