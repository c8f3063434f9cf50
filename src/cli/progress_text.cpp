#include "cli/progress_text.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "core/append_all.h"

namespace {

constexpr std::uint64_t GUESS_AFTER = 1000;   // milliseconds
constexpr double LONGEST_GUESS = 48.0 * 3600; // seconds
constexpr double UNITS_UNTIL = 90;            // of one unit before the next longer one is taken

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

// In the unit that a person would name.
void append_time_left(BoundedText& text, double seconds)
{
    double time = std::max(seconds, 1.0);
    const char* unit = " s left";
    for (const char* longer_unit : {" min left", " h left"}) {
        if (time >= UNITS_UNTIL) {
            time /= 60;
            unit = longer_unit;
        }
    }
    append_if_it_fits(text, ", about ", Grouped{static_cast<std::uint64_t>(time + 0.5)}, unit);
}

// Numbers of any size are divided: as doubles, none of them overflows.
void append_reading(BoundedText& text, const RunPosition& position)
{
    const double done = static_cast<double>(position.done);
    const double total = static_cast<double>(position.total);
    append_if_it_fits(text, ": ", Grouped{position.done}, " of ", Grouped{position.total});
    append_if_it_fits(text, " (", Grouped{static_cast<std::uint64_t>(done * 100 / total)}, " %)");
    if (position.done != 0 && position.stage_age >= GUESS_AFTER) {
        const double seconds = static_cast<double>(position.stage_age) / 1000;
        const double seconds_left = seconds * (total - done) / done;
        if (seconds_left <= LONGEST_GUESS) {
            append_time_left(text, seconds_left);
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
