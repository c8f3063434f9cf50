// What tests do to the calls of the code under test, by means of intercepted_calls.h.
//
// Each of these holds while the object lives. Calls are counted from its beginning: 1 is
// the next one.

#pragma once

#include <cerrno>
#include <cstdint>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>

#include "support/intercepted_calls.h"

enum class Length
{
    Once,
    FromThenOn
};

// Tells, call by call, which of them are struck.
class Strikes
{
public:
    Strikes(std::uint64_t number, Length length) : number_(number), length_(length) {}

    // Whether the call that is being made, each in its turn, is struck.
    bool next()
    {
        ++made_;
        const bool strikes = made_ == number_ || (made_ > number_ && length_ == Length::FromThenOn);
        struck_ += strikes ? 1 : 0;
        return strikes;
    }

    std::uint64_t struck() const
    {
        return struck_;
    }

private:
    std::uint64_t number_;
    Length length_;
    std::uint64_t made_ = 0;
    std::uint64_t struck_ = 0;
};

// The call of that number, and all later ones if wanted, does nothing and gives result,
// with that errno.
template <typename Result, typename... Arguments>
class CallFault
{
public:
    CallFault(InterceptedCall<Result(Arguments...)>& call, std::uint64_t number,
              std::type_identity_t<Result> result, int error, Length length = Length::Once)
        : strikes_(number, length),
          interception_(call, [this, result, error](const auto& next, Arguments... arguments) {
              if (!strikes_.next()) {
                  return next(arguments...);
              }
              errno = error;
              return result;
          })
    {
    }

    // Calls that have failed so far.
    std::uint64_t failures() const
    {
        return strikes_.struck();
    }

private:
    Strikes strikes_;
    Interception<Result, Arguments...> interception_;
};

// The allocation of that number, and all later ones unless only that is wanted, gives null
// with ENOMEM, whether it is a new block or a larger one.
class AllocationFault
{
public:
    using Length = ::Length;

    explicit AllocationFault(std::uint64_t number, Length length = Length::FromThenOn);

    // Allocations that have failed so far.
    std::uint64_t failures() const;

private:
    Strikes strikes_;
    Interception<void*, std::size_t> malloc_;
    Interception<void*, void*, std::size_t> realloc_;
};

// Allocations made by our own objects since the test program started.
std::uint64_t allocation_count();

// Each read (or write) takes at most so many bytes, as the kernel does with very long
// ones.
class ShortTransfers
{
public:
    explicit ShortTransfers(std::size_t limit);

private:
    Interception<ssize_t, int, void*, std::size_t, off_t> pread_;
    Interception<ssize_t, int, const void*, std::size_t> write_;
};

// Listings tell another type than an entry has, as on some file systems.
class ListedTypes
{
public:
    using Type = unsigned char; // DT_REG and the like

    explicit ListedTypes(std::function<Type(Type)> type_told);

private:
    Interception<dirent*, DIR*> readdir_;
};

// Runs change once, just before the call of that number: so the world changes between two
// calls, as another program might change it at any moment. Change may make such calls
// itself.
template <typename Result, typename... Arguments>
class BeforeCall
{
public:
    BeforeCall(InterceptedCall<Result(Arguments...)>& call, std::uint64_t number,
               std::function<void()> change)
        : calls_left_(number), change_(std::move(change)),
          interception_(call, [this](const auto& next, Arguments... arguments) {
              if (calls_left_ > 0 && --calls_left_ == 0) {
                  change_();
              }
              return next(arguments...);
          })
    {
    }

    // Whether the call was made.
    bool happened() const
    {
        return calls_left_ == 0;
    }

private:
    std::uint64_t calls_left_;
    std::function<void()> change_;
    Interception<Result, Arguments...> interception_;
};

// Runs change once: when a listing has given the entry of that name, or has come to its
// end for an empty name.
class AfterListing
{
public:
    AfterListing(std::string name, std::function<void()> change);

    // Whether the entry was given.
    bool happened() const
    {
        return happened_;
    }

private:
    bool happened_ = false;
    Interception<dirent*, DIR*> readdir_;
};

// What is opened for writing lies in memory, one file at a time, from its opening to its
// closing; all other files are where they are. A fault that begins later strikes first.
class MemoryFile
{
public:
    MemoryFile();

    // Of the file that was opened last, whole or as far as it was written.
    const std::string& path() const
    {
        return path_;
    }
    const std::string& bytes() const
    {
        return bytes_;
    }
    bool is_open() const
    {
        return is_open_;
    }

private:
    std::string path_;
    std::string bytes_;
    bool is_open_ = false;
    Interception<int, const char*, int, mode_t> open_;
    Interception<ssize_t, int, const void*, std::size_t> write_;
    Interception<int, int> close_;
};
