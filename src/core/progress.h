// Whom a long piece of work tells how far it is. The work knows nothing else of the
// listener, which must not change what the work is about.

#pragma once

#include <cstdint>

struct Progress
{
    void (*tell)(void* listener, std::uint64_t done);
    void* listener; // what tell is given
};

// Tells that so much is done; nobody where progress is null.
inline void tell_progress(const Progress* progress, std::uint64_t done)
{
    if (progress != nullptr) {
        progress->tell(progress->listener, done);
    }
}
