#include "faults/watched_run.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <type_traits>
#include <utility>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

std::size_t index_of(Call call)
{
    return static_cast<std::size_t>(call);
}

bool strikes(const Fault& fault, Call call, std::uint64_t number)
{
    return fault.call == call &&
           (number == fault.number || (fault.from_then_on && number > fault.number));
}

// Reads or writes by transfer, which takes the bytes that it may handle.
template <typename Transfer>
ssize_t transfer_some(std::optional<Answer> answer, std::size_t count, Transfer transfer)
{
    if (!answer) {
        return transfer(count);
    }
    if (*answer == Answer::Short) {
        return transfer((count + 1) / 2);
    }
    errno = EIO;
    return *answer == Answer::Nothing ? 0 : -1;
}

// A formatting that fails half way leaves no NUL behind what it wrote.
int fail_half_way(char* text, std::size_t size, int length)
{
    if (text != nullptr && size > 0) {
        const std::size_t half = std::min(static_cast<std::size_t>(length), size - 1) / 2;
        std::memset(text + half, '?', size - half);
    }
    return -1;
}

} // namespace

WatchedRun::WatchedRun(const World& world, std::vector<Fault> faults, bool records)
    : world_(world), faults_(std::move(faults)), records_(records)
{
}

int WatchedRun::watch(const std::function<int()>& program)
{
    intercept_memory();
    intercept_files();
    intercept_transfers();
    intercept_folders();
    intercept_paths();
    intercept_texts();
    intercept_time();
    intercept_terminal();
    const int result = program();
    while (!interceptions_.empty()) {
        interceptions_.pop_back();
    }
    return result;
}

std::uint64_t WatchedRun::count(Call call) const
{
    return counts_[index_of(call)];
}

std::string WatchedRun::slips() const
{
    std::string text = slips_;
    const auto add = [&](std::size_t count, const char* what) {
        if (count > 0) {
            text += std::to_string(count) + ' ' + what + " not given back\n";
        }
    };
    add(blocks_.size(), "blocks");
    add(files_.size(), "files");
    add(folders_.size(), "folders");
    add(line_stands_ ? 1 : 0, "line of the terminal");
    return text;
}

template <typename Result, typename... Arguments, typename Handler>
void WatchedRun::intercept(InterceptedCall<Result(Arguments...)>& call, Handler handler)
{
    interceptions_.push_back(
        std::make_shared<Interception<Result, Arguments...>>(call, std::move(handler)));
}

template <typename Result, typename... Arguments>
void WatchedRun::intercept_refusing(InterceptedCall<Result(Arguments...)>& intercepted, Call call,
                                    std::type_identity_t<Result> result, int error)
{
    intercept(intercepted, [=, this](const auto& next, Arguments... arguments) {
        return refuses(call, error, file_) ? result : next(arguments...);
    });
}

void WatchedRun::intercept_memory()
{
    intercept(malloc_call, [this](const auto& next, std::size_t size) -> void* {
        if (phase_ == Phase::Folders) {
            begin_assembling();
        }
        if (refuses(Call::Malloc, ENOMEM, file_)) {
            return nullptr;
        }
        void* block = next(size);
        if (block != nullptr) {
            std::memset(block, 0xA5, size); // what is read before it is written shows
        }
        hold(block);
        if (phase_ == Phase::Entries && block != nullptr) {
            phase_ = Phase::Reading;
        }
        return block;
    });
    intercept(realloc_call, [this](const auto& next, void* block, std::size_t size) -> void* {
        begin_assembling();
        if (refuses(Call::Realloc, ENOMEM)) {
            return nullptr;
        }
        release(block);
        void* moved = next(block, size);
        hold(moved);
        return moved;
    });
    intercept(free_call, [this](const auto& next, void* block) {
        release(block);
        next(block);
    });
    intercept_refusing(madvise_call, Call::Madvise, -1, EINVAL);
    intercept_refusing(mallopt_call, Call::Mallopt, 0, EINVAL);
}

void WatchedRun::intercept_files()
{
    intercept(open_call, [this](const auto& next, const char* path, int flags, mode_t mode) {
        if ((flags & O_ACCMODE) != O_RDONLY) {
            begin_writing(path);
        }
        if (const std::optional<Answer> answer = ask(Call::Open, path)) {
            errno = *answer == Answer::WouldBlock ? EWOULDBLOCK : EMFILE;
            return -1;
        }
        const int file = next(path, flags, mode);
        if (file >= 0) {
            files_[file] = path;
        }
        return file;
    });
    intercept(close_call, [this](const auto& next, int file) {
        const bool refused = refuses(Call::Close, EIO, files_[file]);
        closed(file);
        const int result = next(file);
        return refused ? -1 : result;
    });
    intercept(fstat_call, [this](const auto& next, int file, struct stat* status) {
        return refuses(Call::Fstat, EIO, files_[file]) ? -1 : next(file, status);
    });
    intercept_refusing(posix_fadvise_call, Call::Fadvise, ESPIPE, EINVAL);
    intercept(lseek_call, [this](const auto& next, int file, off_t offset, int whence) {
        begin_reading(file);
        return refuses(Call::Lseek, EIO, file_) ? -1 : next(file, offset, whence);
    });
}

void WatchedRun::intercept_transfers()
{
    intercept(pread_call, [this](const auto& next, int file, void* bytes, std::size_t count,
                                 off_t offset) {
        return transfer_some(ask(Call::Pread, files_[file]), count,
                             [&](std::size_t some) { return next(file, bytes, some, offset); });
    });
    intercept(write_call, [this](const auto& next, int file, const void* bytes, std::size_t count) {
        if (file == STDERR_FILENO) {
            line_stands_ = !std::string_view(static_cast<const char*>(bytes), count).ends_with('J');
            return transfer_some(ask(Call::Draw, ""), count,
                                 [](std::size_t some) { return static_cast<ssize_t>(some); });
        }
        return transfer_some(ask(Call::Write, file_), count,
                             [&](std::size_t some) { return next(file, bytes, some); });
    });
}

void WatchedRun::intercept_folders()
{
    // The first opening only tries whether there is such a directory.
    intercept(opendir_call, [this](const auto& next, const char* path) -> DIR* {
        if (phase_ == Phase::Start && count(Call::Opendir) > 0) {
            phase_ = Phase::Walk;
        }
        DIR* listing = refuses(Call::Opendir, EMFILE, path) ? nullptr : next(path);
        if (listing != nullptr) {
            folders_[listing] = {path, 0};
            listings_[path].clear();
        } else {
            leave_folder();
        }
        return listing;
    });
    intercept(readdir_call, [this](const auto& next, DIR* listing) -> dirent* {
        Listing& folder = folders_.at(listing);
        if (refuses(Call::Readdir, EIO, folder.path, folder.listed)) {
            return nullptr;
        }
        dirent* entry = next(listing);
        if (entry != nullptr) {
            ++folder.listed;
            listings_[folder.path].emplace_back(entry->d_name);
        }
        return entry;
    });
    intercept(closedir_call, [this](const auto& next, DIR* listing) {
        const bool refused = refuses(Call::Closedir, EIO, folders_[listing].path);
        slips_ += folders_[listing].path.empty() ? "closed a folder that was not open\n" : "";
        folders_.erase(listing);
        leave_folder();
        const int result = next(listing);
        return refused ? -1 : result;
    });
}

void WatchedRun::intercept_paths()
{
    intercept_refusing(fstatfs_call, Call::Fstatfs, -1, ENOSYS);
    intercept_refusing(statfs_call, Call::Statfs, -1, ENOSYS);
    intercept(stat_call, [this](const auto& next, const char* path, struct stat* status) {
        begin_examining(path);
        return refuses(Call::Stat, EACCES, path) ? -1 : next(path, status);
    });
    intercept(lstat_call, [this](const auto& next, const char* path, struct stat* status) {
        return refuses(Call::Lstat, EACCES, path) ? -1 : next(path, status);
    });
    intercept(mkdir_call, [this](const auto& next, const char* path, mode_t mode) {
        if (const std::optional<Answer> answer = ask(Call::Mkdir, path)) {
            errno = *answer == Answer::Exists ? EEXIST : EACCES;
            return -1;
        }
        return next(path, mode);
    });
    intercept(realpath_call, [this](const auto& next, const char* path, char* resolved) -> char* {
        begin_assembling();
        return refuses(Call::Realpath, EACCES, path) ? nullptr : next(path, resolved);
    });
}

void WatchedRun::intercept_texts()
{
    intercept(format_call, [this](const auto& next, char* text, std::size_t size,
                                  const char* format, va_list values) {
        begin_assembling();
        const bool refused = refuses(Call::Format, ENOMEM);
        const int length = next(text, size, format, values);
        return refused ? fail_half_way(text, size, length) : length;
    });
    intercept(print_call, [this](const auto&, std::FILE* stream, std::string_view text) {
        (stream == stderr ? errors_ : output_) += text;
        slips_ += line_stands_ ? "printed beside the line of the terminal\n" : "";
        return refuses(Call::Print, ENOSPC) ? std::size_t{0} : text.size();
    });
}

void WatchedRun::intercept_time()
{
    intercept(time_call, [this](const auto&, std::time_t*) {
        return refuses(Call::Time, EFAULT) ? std::time_t{-1} : WATCHED_TIME;
    });
    intercept_refusing(getrusage_call, Call::Usage, -1, EINVAL);
    intercept_refusing(gmtime_r_call, Call::Gmtime, nullptr, EOVERFLOW);
    intercept_refusing(strftime_call, Call::Strftime, 0, ERANGE);
}

void WatchedRun::intercept_terminal()
{
    intercept(isatty_call, [this](const auto&, int) {
        return !refuses(Call::Isatty, ENOTTY) && world_.has_terminal ? 1 : 0;
    });
    intercept(tcgetpgrp_call, [this](const auto&, int) {
        return refuses(Call::Tcgetpgrp, ENOTTY) ? -1 : getpgrp();
    });
    intercept(poll_call, [this](const auto&, pollfd* terminal, nfds_t, int) {
        terminal->revents = POLLOUT;
        return refuses(Call::Poll, EINTR) ? -1 : 1;
    });
    intercept(ioctl_call, [this](const auto&, int, unsigned long, void* size) {
        *static_cast<winsize*>(size) = {24, 30, 0, 0};
        return refuses(Call::Ioctl, ENOTTY) ? -1 : 0;
    });
    intercept(clock_gettime_call, [this](const auto&, clockid_t, timespec* now) {
        *now = {world_.has_terminal ? static_cast<std::time_t>(2 * count(Call::Clock) + 1) : 0, 0};
        return refuses(Call::Clock, EINVAL) ? -1 : 0;
    });
}

std::optional<Answer> WatchedRun::ask(Call call, std::string_view subject, std::uint64_t number)
{
    const std::uint64_t nth = ++counts_[index_of(call)];
    const auto record = [&](Answer answer) {
        return CallRecord{call, phase_, answer, std::string(subject), number, called_name()};
    };
    if (records_) {
        trace_.push_back(record(Answer::Refuse));
    }
    for (const Fault& fault : faults_) {
        if (strikes(fault, call, nth)) {
            failed_.push_back(record(fault.answer));
            return fault.answer;
        }
    }
    return std::nullopt;
}

bool WatchedRun::refuses(Call call, int error, std::string_view subject, std::uint64_t number)
{
    if (!ask(call, subject, number)) {
        return false;
    }
    errno = error;
    return true;
}

// The folders above the page are looked at before, one at least.
void WatchedRun::begin_assembling()
{
    if (phase_ == Phase::Folders) {
        phase_ = Phase::Page;
    }
}

// Of the files that are read, only those are examined that are opened ahead: before that,
// and once more when their turn comes. Everything else is a folder above the page.
void WatchedRun::begin_examining(const std::string& path)
{
    if (phase_ != Phase::Entries && phase_ != Phase::Reading && phase_ != Phase::Ahead) {
        return;
    }
    const bool is_open = std::any_of(files_.begin(), files_.end(),
                                     [&](const auto& open) { return open.second == path; });
    phase_ = !path.ends_with("html") ? Phase::Folders : is_open ? Phase::Reading : Phase::Ahead;
}

void WatchedRun::begin_reading(int file)
{
    file_ = files_[file];
    phase_ = Phase::Reading;
}

void WatchedRun::begin_writing(const std::string& path)
{
    file_ = path;
    phase_ = path == world_.page ? Phase::PageFile : Phase::JsonFile;
}

void WatchedRun::closed(int file)
{
    if (files_.erase(file) == 0) {
        slips_ += "closed a file that was not open\n";
    }
    file_.clear();
    if (phase_ == Phase::PageFile) {
        phase_ = world_.wants_json ? Phase::Json : Phase::Closing;
    } else if (phase_ == Phase::JsonFile) {
        phase_ = Phase::Closing;
    }
}

void WatchedRun::leave_folder()
{
    if (phase_ == Phase::Walk && folders_.empty()) {
        phase_ = Phase::Entries;
    }
}

void WatchedRun::hold(void* block)
{
    if (block != nullptr) {
        blocks_.insert(block);
    }
}

void WatchedRun::release(void* block)
{
    if (block != nullptr && blocks_.erase(block) == 0) {
        slips_ += "released a block that was not held\n";
    }
}

const char* name_of(Call call)
{
    static constexpr std::array<const char*, CALL_COUNT> NAMES = {
        "malloc",        "realloc", "open",   "fstat",     "posix_fadvise", "lseek",
        "pread",         "write",   "close",  "opendir",   "readdir",       "closedir",
        "fstatfs",       "statfs",  "stat",   "lstat",     "mkdir",         "realpath",
        "format",        "print",   "time",   "getrusage", "gmtime_r",      "strftime",
        "madvise",       "mallopt", "isatty", "tcgetpgrp", "poll",          "ioctl",
        "clock_gettime", "draw"};
    return NAMES[index_of(call)];
}

const char* name_of(Answer answer)
{
    static constexpr std::array<const char*, 5> NAMES = {"Refuse", "Short", "Nothing", "WouldBlock",
                                                         "Exists"};
    return NAMES[static_cast<std::size_t>(answer)];
}

const char* name_of(Phase phase)
{
    static constexpr std::array<const char*, 11> NAMES = {
        "Start", "Walk",     "Entries", "Reading",  "Ahead",  "Folders",
        "Page",  "PageFile", "Json",    "JsonFile", "Closing"};
    return NAMES[static_cast<std::size_t>(phase)];
}
