// Page and JSON of any entries, written to memory and read back by readers that know
// nothing of the writers.
//
// An input: what goes wrong, which paths can be resolved, the time, the input directory,
// the page's path, the two canonical paths, and the entries.

#include <algorithm>
#include <array>
#include <cstdio>

#include "cli/version.h"
#include "summary/json_summary.h"
#include "summary/summary_model.h"
#include "summary/summary_page.h"
#include "support/entry_grammar.h"
#include "support/expected_outputs.h"
#include "support/memory_files.h"
#include "support/require.h"
#include "support/target.h"

namespace {

constexpr std::size_t PATH_SIZE = 4096;
constexpr std::uint8_t NO_FOLDER = 1;
constexpr std::uint8_t NO_DIRECTORY = 2;

constexpr std::int64_t SECONDS_A_DAY = 86400;
constexpr std::int64_t YEAR_10000 = 253402300800;

struct Run
{
    std::array<char, PATH_SIZE> input_dir;
    std::array<char, PATH_SIZE> page_path;
    std::array<char, PATH_SIZE> directory; // canonical, as the next
    std::array<char, PATH_SIZE> folder;
    MemoryFiles files;
};

WritingFault fault_of(std::uint8_t byte)
{
    // Seldom: most inputs are to be written and read back.
    return byte >= 1 && byte <= 3 ? static_cast<WritingFault>(byte) : WritingFault::None;
}

void take_canonical(Input& input, std::array<char, PATH_SIZE>& path)
{
    path[0] = '/';
    take_text(input, path.data() + 1, PATH_SIZE - 2);
}

void take_run(Input& input, Run& run)
{
    run.files.fault = fault_of(input.byte());
    const std::uint8_t unresolved = input.byte();
    run.files.now = 0;
    for (const std::uint8_t byte : input.take_up_to(5)) {
        run.files.now = run.files.now * 256 + byte;
    }
    run.files.now %= YEAR_10000;
    take_text(input, run.input_dir.data(), PATH_SIZE - 1);
    take_text(input, run.page_path.data(), PATH_SIZE - 1);
    take_canonical(input, run.directory);
    take_canonical(input, run.folder);
    run.files.canonical[0] = (unresolved & NO_FOLDER) != 0 ? nullptr : run.folder.data();
    run.files.canonical[1] = (unresolved & NO_DIRECTORY) != 0 ? nullptr : run.directory.data();
}

// Counted from March on, so that the leap day is a year's last one.
std::string_view shown_time(std::int64_t now, std::array<char, 64>& text)
{
    const std::int64_t day = now / SECONDS_A_DAY + 719468; // since 1 March of the year 0
    const std::int64_t second = now % SECONDS_A_DAY;
    const std::int64_t in_era = day % 146097;
    const std::int64_t year_of_era =
        (in_era - in_era / 1460 + in_era / 36524 - in_era / 146096) / 365;
    const std::int64_t in_year = in_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
    const std::int64_t month = (5 * in_year + 2) / 153; // 0 is March
    const std::int64_t year = year_of_era + day / 146097 * 400 + (month >= 10 ? 1 : 0);
    const int length = std::snprintf(
        text.data(), text.size(), "%04lld-%02lld-%02lld %02lld:%02lld:%02lld UTC",
        static_cast<long long>(year), static_cast<long long>(month < 10 ? month + 3 : month - 9),
        static_cast<long long>(in_year - (153 * month + 2) / 5 + 1),
        static_cast<long long>(second / 3600), static_cast<long long>(second / 60 % 60),
        static_cast<long long>(second % 60));
    return {text.data(), static_cast<std::size_t>(length)};
}

std::string_view output_folder(std::string_view page_path)
{
    const std::size_t slash = page_path.find_last_of('/');
    if (slash == page_path.npos) {
        return ".";
    }
    return slash == 0 ? page_path.substr(0, 1) : page_path.substr(0, slash);
}

// False: nothing is there to be read.
bool judge_written(bool answer, const Run& run, std::string_view path)
{
    const WritingFault fault = run.files.fault;
    require(opened_path() == path, "the path that is opened");
    const bool whole = fault == WritingFault::None || fault == WritingFault::Piecemeal;
    require(answer == whole, "true means that every byte was taken");
    return whole;
}

void judge_resolved(const Run& run)
{
    require(resolved_path(0) == output_folder(run.page_path.data()), "the folder that is resolved");
    require(resolved_path(1) ==
                (run.files.canonical[0] == nullptr ? "" : std::string_view(run.input_dir.data())),
            "the directory that is resolved, if the folder was");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Run run;
    Input input(data, size);
    take_run(input, run);
    const std::span<const ReportEntry> entries = take_entries(input);
    const SummaryModel model = {run.input_dir.data(), entries.empty() ? nullptr : entries.data(),
                                entries.size(), VERSION_TEXT};
    std::array<char, 64> time_text;
    const bool resolved = run.files.canonical[0] != nullptr && run.files.canonical[1] != nullptr;
    const ExpectedOutputs expected = {
        run.input_dir.data(), entries, resolved ? run.files.canonical[1] : nullptr,
        resolved ? run.files.canonical[0] : nullptr, shown_time(run.files.now, time_text)};

    memory_files_start(run.files);
    const bool page = write_summary_page(run.page_path.data(), model);
    memory_files_stop();
    judge_resolved(run);
    if (judge_written(page, run, run.page_path.data())) {
        judge_page(written_bytes(), expected);
    }

    memory_files_start(run.files);
    const bool json = write_json_summary(run.page_path.data(), model);
    memory_files_stop();
    if (judge_written(json, run, run.page_path.data())) {
        judge_json(written_bytes(), expected);
    }
    release_entries();
    return 0;
}
