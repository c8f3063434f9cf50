// Page and JSON of any entries, written to memory and read back by readers that know
// nothing of the writers.
//
// An input: what goes wrong, which paths can be resolved, the time, the input directory,
// the page's path, the two canonical paths, and the entries.

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <optional>

#include "cli/version.h"
#include "summary/json_summary.h"
#include "summary/summary_model.h"
#include "summary/summary_page.h"
#include "support/call_faults.h"
#include "support/entry_grammar.h"
#include "support/expected_outputs.h"
#include "support/require.h"
#include "support/target.h"

namespace {

constexpr std::size_t PATH_SIZE = 4096;
constexpr std::uint8_t NO_FOLDER = 1;
constexpr std::uint8_t NO_DIRECTORY = 2;
constexpr std::int64_t YEAR_10000 = 253402300800;

// The first byte of an input; any other value, and most are, lets all go well.
enum WritingFault : std::uint8_t
{
    PIECEMEAL = 1, // each write takes a part; nothing is lost
    NO_OPENING = 2,
    FULL = 3 // the first write takes a part, the next one fails
};

struct Run
{
    std::uint8_t fault;
    std::int64_t now;
    std::array<char, PATH_SIZE> input_dir;
    std::array<char, PATH_SIZE> page_path;
    std::array<char, PATH_SIZE> directory; // canonical, as the next
    std::array<char, PATH_SIZE> folder;
    bool knows_directory;
    bool knows_folder;
};

void take_canonical(Input& input, std::array<char, PATH_SIZE>& path)
{
    path[0] = '/';
    take_text(input, path.data() + 1, PATH_SIZE - 2);
}

void take_run(Input& input, Run& run)
{
    run.fault = input.byte();
    const std::uint8_t unresolved = input.byte();
    run.now = 0;
    for (const std::uint8_t byte : input.take_up_to(5)) {
        run.now = run.now * 256 + byte;
    }
    run.now %= YEAR_10000;
    take_text(input, run.input_dir.data(), PATH_SIZE - 1);
    take_text(input, run.page_path.data(), PATH_SIZE - 1);
    take_canonical(input, run.directory);
    take_canonical(input, run.folder);
    run.knows_folder = (unresolved & NO_FOLDER) == 0;
    run.knows_directory = (unresolved & NO_DIRECTORY) == 0;
}

std::string shown_time(std::int64_t now)
{
    using namespace std::chrono;
    const sys_seconds time{seconds(now)};
    const year_month_day day(floor<days>(time));
    const hh_mm_ss clock(time - floor<days>(time));
    std::array<char, 64> text;
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d UTC",
                  static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                  static_cast<unsigned>(day.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()));
    return text.data();
}

std::string_view output_folder(std::string_view page_path)
{
    const std::size_t slash = page_path.find_last_of('/');
    if (slash == page_path.npos) {
        return ".";
    }
    return slash == 0 ? page_path.substr(0, 1) : page_path.substr(0, slash);
}

// What the system makes of the first path that is resolved, the page's folder, and of the
// second one, the directory that was scanned.
char* resolve(const Run& run, int number, const char* path, char* output)
{
    const bool is_folder = number == 1;
    require(number <= 2, "two paths are resolved");
    require(is_folder ? path == output_folder(run.page_path.data())
                      : std::strcmp(path, run.input_dir.data()) == 0,
            "the path that is resolved");
    if (!(is_folder ? run.knows_folder : run.knows_directory)) {
        errno = ENOENT;
        return nullptr;
    }
    return std::strcpy(output, (is_folder ? run.folder : run.directory).data());
}

using WriteSummary = bool (*)(const char* path, const SummaryModel& model);
using Judge = void (*)(std::string_view bytes, const ExpectedOutputs& expected);

void write_and_judge(WriteSummary write, Judge judge, const Run& run,
                     const ExpectedOutputs& expected)
{
    const SummaryModel model = {run.input_dir.data(),
                                expected.entries.empty() ? nullptr : expected.entries.data(),
                                expected.entries.size(), VERSION_TEXT};
    const MemoryFile file;
    bool written = false;
    {
        const Interception now(time_call, [&](const auto&, std::time_t*) { return run.now; });
        int resolved = 0;
        const Interception paths(realpath_call, [&](const auto&, const char* path, char* output) {
            return resolve(run, ++resolved, path, output);
        });
        std::optional<ShortTransfers> pieces;
        if (run.fault == PIECEMEAL || run.fault == FULL) {
            pieces.emplace(run.fault == FULL ? 100 : 1000);
        }
        const std::uint64_t never = UINT64_MAX;
        const CallFault closed(open_call, run.fault == NO_OPENING ? 1 : never, -1, EACCES);
        const CallFault full(write_call, run.fault == FULL ? 2 : never, -1, ENOSPC,
                             Length::FromThenOn);
        written = write(run.page_path.data(), model);
    }
    require(!file.is_open(), "the file is closed");
    require(written == (run.fault != NO_OPENING && run.fault != FULL),
            "true means that every byte was taken");
    if (written) {
        require(file.path() == run.page_path.data(), "the path that is opened");
        judge(file.bytes(), expected);
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Run run;
    Input input(data, size);
    take_run(input, run);
    const bool resolved = run.knows_folder && run.knows_directory;
    const ExpectedOutputs expected = {run.input_dir.data(), take_entries(input),
                                      resolved ? run.directory.data() : nullptr,
                                      resolved ? run.folder.data() : nullptr, shown_time(run.now)};
    write_and_judge(write_summary_page, judge_page, run, expected);
    write_and_judge(write_json_summary, judge_json, run, expected);
    return 0;
}
