// Watches one run of the program's code: counts the calls that it makes to the C
// library and the system, fails those that it is told to fail, and keeps account of
// what the code holds.
//
// The test program is linked with --wrap for every call that can fail (see
// call_wraps.cpp), so the calls that our own objects make come through here while a
// run is watched; the libraries' own calls do not.

#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include <dirent.h>

enum class Call
{
    Malloc,
    Realloc,
    Open,
    Lseek,
    Pread,
    Write,
    Close,
    Opendir,
    Readdir,
    Closedir,
    Stat,
    Mkdir,
    Realpath,
    Vsnprintf,
    Snprintf,
    Print, // printf, fprintf, fwrite, fputs
    Time,
    Gmtime,
    Strftime,
    Madvise,
    Mallopt,
};
inline constexpr std::size_t CALL_COUNT = 21;

// What a failing call says.
enum class Answer
{
    Refuse,     // its ordinary failure, with nothing done; but close and closedir do close,
                // and vsnprintf and snprintf write half of the text, but no NUL
    Short,      // pread, write: half of the bytes
    Nothing,    // pread, write: 0, as at the end of a file that has shrunk
    WouldBlock, // open: the failure after which reading is tried once more
    Exists,     // mkdir: there is such an entry (there is none)
};

// What the run is about when a call is made, told from the arguments of the calls.
enum class Phase
{
    Start,    // looks at the input directory and for an older page
    Walk,     // lists the files
    Entries,  // has listed them
    Reading,  // reads one file after another
    Folders,  // makes the folders above the page
    Page,     // assembles the page
    PageFile, // writes it
    Json,     // assembles the JSON
    JsonFile, // writes it
    Closing,  // says what was written
};

struct Fault
{
    Call call;
    Answer answer;
    std::uint64_t number; // of the call among those of its kind, from 1
    bool from_then_on;    // and all later ones of its kind
};

struct CallRecord
{
    Call call;
    Phase phase;
    Answer answer;        // Refuse in the record of a call that did not fail
    std::string subject;  // path that the call is about; empty where there is none
    std::uint64_t number; // Readdir: entries of this folder so far; Write: bytes of this
                          // file so far; Snprintf, Print: such calls so far; else 0

    bool operator==(const CallRecord&) const = default;
};

// Names in the order in which each folder listed them, by the path that it was opened as.
using Listings = std::map<std::string, std::vector<std::string>>;

// What a clock reads while a run is watched.
inline constexpr std::int64_t WATCHED_TIME = 1767225599;
inline constexpr std::string_view WATCHED_TIME_TEXT = "2025-12-31 23:59:59 UTC";

// Watches from start() to stop(); one at a time.
class WatchedRun
{
public:
    // Files opened for writing are the page if they have its path, and the JSON else. Without
    // JSON, the page is the last. A run that records keeps each call; the others keep those
    // that they fail.
    WatchedRun(std::string page, bool with_json, std::vector<Fault> faults, bool records);
    ~WatchedRun();
    WatchedRun(const WatchedRun&) = delete;
    WatchedRun& operator=(const WatchedRun&) = delete;

    void start();
    void stop();

    std::uint64_t count(Call call) const;
    const std::vector<CallRecord>& failed() const;
    const std::vector<CallRecord>& trace() const;
    const Listings& listings() const;

    // What the code has not given back, and what it gave back without having it; empty
    // when all is in order.
    std::string slips() const;

    // The rest is for the wrapped calls. Each first says what is happening, then asks.

    // The answer with which this call is to fail, if it is to.
    std::optional<Answer> ask(Call call, std::string_view subject, std::uint64_t number = 0);

    Phase phase() const;
    const std::string& file() const; // the file that is open

    void before_opening_folder();
    void opened_folder(DIR* listing, const char* path);
    void closed_folder(DIR* listing);
    std::string folder(DIR* listing) const;
    std::uint64_t listed(DIR* listing) const;
    void listed_entry(DIR* listing, const char* name);

    void before_opening(const char* path, bool for_writing);
    void opened(int file);
    void closed(int file);
    void accepted(std::uint64_t bytes);
    std::uint64_t accepted_bytes() const;

    void allocated(void* block);
    void released(void* block);

    void before_folder_question();
    void before_assembling();
    std::uint64_t count_before(Call call) const; // in this phase

private:
    struct Listing
    {
        std::string path;
        std::uint64_t listed;
    };

    void enter(Phase phase);

    std::string page_;
    bool with_json_;
    std::vector<Fault> faults_;
    bool records_;
    Phase phase_ = Phase::Start;
    std::array<std::uint64_t, CALL_COUNT> counts_ = {};
    std::array<std::uint64_t, CALL_COUNT> counts_before_phase_ = {};
    std::vector<CallRecord> failed_;
    std::vector<CallRecord> trace_;
    Listings listings_;
    std::string file_;
    std::uint64_t accepted_ = 0;
    std::unordered_set<void*> blocks_;
    std::set<int> files_;
    std::map<DIR*, Listing> folders_;
    std::string slips_;
};

// The run that is being watched, or null.
WatchedRun* watched_run();

// How often each wrapped name was called by a watched run, since the program started.
std::map<std::string_view, std::uint64_t>& name_hits();

const char* name_of(Call call);
const char* name_of(Answer answer);
const char* name_of(Phase phase);
