// create_page_folders on a file system that lives in memory: which folders it asks for
// and makes, in which order, and what it answers.
//
// An input: a count of answers less one, the answers, and the page's path in short form.
// An answer tells what stands, before the run, at the paths of some lengths.

#include <array>
#include <cerrno>
#include <cstring>

#include <sys/stat.h>

#include "cli/output_paths.h"
#include "core/paths.h"
#include "support/input.h"
#include "support/require.h"
#include "support/target.h"

extern "C" {
int __real_stat(const char* path, struct stat* status);
int __wrap_stat(const char* path, struct stat* status);
int __real_mkdir(const char* path, mode_t mode);
int __wrap_mkdir(const char* path, mode_t mode);
}

namespace {

constexpr std::array<std::string_view, 6> WORDS = {"a/", "C:/", "C:\\", "../", "out\\", "s.html"};

constexpr std::size_t TEXT_SIZE = PATH_BUFFER_SIZE + 64;

enum class Place
{
    Missing,
    Folder,
    File,
    Socket, // has the directory's bit in its type
    MissingForbidden,
    MissingParent,
    DanglingLink, // cannot be examined, yet it is there
    Count
};

enum class Call : std::uint8_t
{
    Stat,
    Mkdir
};

// One call, on the first length bytes of the page's path.
struct Event
{
    Call call;
    std::size_t length;

    bool operator==(const Event&) const = default;
};

struct Trace
{
    std::array<Event, 2 * TEXT_SIZE> events;
    std::size_t count;
};

// Asking twice in a row is asking.
void add(Trace& trace, Event event)
{
    const bool repeats =
        event.call == Call::Stat && trace.count > 0 && trace.events[trace.count - 1] == event;
    if (!repeats) {
        trace.events[trace.count++] = event;
    }
}

struct Files
{
    bool active; // else the calls are those of libFuzzer
    std::string_view page_path;
    std::span<const std::uint8_t> answers;
    std::array<bool, TEXT_SIZE> made; // by the length of the path
    Trace trace;
};

Files files;

Place place_before(std::size_t length)
{
    const std::uint8_t answer =
        files.answers.empty() ? std::uint8_t{0} : files.answers[length % files.answers.size()];
    return static_cast<Place>(answer % static_cast<std::uint8_t>(Place::Count));
}

std::size_t judged_length(const char* path)
{
    const std::string_view text = path;
    require(files.page_path.starts_with(text), "only folders above the page are looked at");
    return text.size();
}

// The type bits of what stands there, or 0.
mode_t type_at(std::size_t length)
{
    if (files.made[length]) {
        return S_IFDIR;
    }
    switch (place_before(length)) {
    case Place::Folder:
        return S_IFDIR;
    case Place::File:
        return S_IFREG;
    case Place::Socket:
        return S_IFSOCK;
    default:
        return 0;
    }
}

// 0, or the error number with which a folder cannot be made.
int making_error(std::size_t length)
{
    if (files.made[length]) {
        return EEXIST;
    }
    switch (place_before(length)) {
    case Place::Missing:
        return 0;
    case Place::MissingForbidden:
        return EACCES;
    case Place::MissingParent:
        return ENOENT;
    default:
        return EEXIST;
    }
}

bool is_separator(char byte)
{
    return byte == '/' || byte == '\\';
}

// What one level asks of the file system. False: it cannot be had.
bool expect_level(Trace& trace, std::size_t length)
{
    add(trace, {Call::Stat, length});
    const Place place = place_before(length);
    if (place == Place::Folder || place == Place::Socket) {
        return true;
    }
    add(trace, {Call::Mkdir, length});
    return place != Place::MissingForbidden && place != Place::MissingParent;
}

bool expect_run(Trace& trace)
{
    const std::string_view path = files.page_path;
    if (path.size() > 4095) {
        return false;
    }
    std::size_t folder = path.size();
    while (folder > 0 && !is_separator(path[folder - 1])) {
        --folder;
    }
    if (folder <= 1) {
        return true;
    }
    --folder;
    for (std::size_t i = 1; i < folder; ++i) {
        const bool is_drive = i == 2 && path[1] == ':';
        if (is_separator(path[i]) && !is_drive && !expect_level(trace, i)) {
            return false;
        }
    }
    return expect_level(trace, folder);
}

} // namespace

int __wrap_stat(const char* path, struct stat* status)
{
    if (!files.active) {
        return __real_stat(path, status);
    }
    const std::size_t length = judged_length(path);
    add(files.trace, {Call::Stat, length});
    const mode_t type = type_at(length);
    if (type == 0) {
        errno = ENOENT;
        return -1;
    }
    *status = {};
    status->st_mode = type | 0755;
    return 0;
}

int __wrap_mkdir(const char* path, mode_t mode)
{
    if (!files.active) {
        return __real_mkdir(path, mode);
    }
    const std::size_t length = judged_length(path);
    require(mode == 0755, "a folder's mode");
    add(files.trace, {Call::Mkdir, length});
    errno = making_error(length);
    files.made[length] = errno == 0;
    return errno == 0 ? 0 : -1;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static std::array<char, TEXT_SIZE> text;
    static Trace expected;

    Input input(data, size);
    files.answers = input.take_up_to(1 + input.byte() % 16);
    const std::string_view typed(text.data(), expand(input.take_rest(), WORDS, text));
    const ExactText page_path(typed.substr(0, typed.find('\0')));
    files.page_path = page_path.view();
    std::memset(files.made.data(), 0, page_path.view().size() + 1);
    files.trace.count = 0;
    expected.count = 0;

    files.active = true;
    const bool created = create_page_folders(page_path.view());
    files.active = false;

    require(created == expect_run(expected), "whether the folders could be created");
    require(files.trace.count == expected.count &&
                std::equal(expected.events.begin(), expected.events.begin() + expected.count,
                           files.trace.events.begin()),
            "which folders are asked for and made, in order");
    return 0;
}
