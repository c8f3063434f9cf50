// Another name of call_faults.h, until no test uses it.

#pragma once

#include <optional>

#include "support/call_faults.h"

enum class FileCall
{
    Read,
    Write,
    Seek
};

class BeforeFileCall
{
public:
    BeforeFileCall(FileCall call, std::uint64_t number, const std::function<void()>& change)
    {
        if (call == FileCall::Read) {
            read_.emplace(pread_call, number, change);
        } else if (call == FileCall::Write) {
            write_.emplace(write_call, number, change);
        } else {
            seek_.emplace(lseek_call, number, change);
        }
    }

    bool happened() const
    {
        return read_ ? read_->happened() : write_ ? write_->happened() : seek_->happened();
    }

private:
    std::optional<BeforeCall<ssize_t, int, void*, std::size_t, off_t>> read_;
    std::optional<BeforeCall<ssize_t, int, const void*, std::size_t>> write_;
    std::optional<BeforeCall<off_t, int, off_t, int>> seek_;
};
