#include "core/replaced_text.h"

namespace {

// Appending nothing would still allocate a fresh buffer's first block.
bool append_run(TextBuffer& buffer, const char* start, const char* end)
{
    return start == end || text_buffer_append(buffer, {start, end});
}

} // namespace

bool append_replaced_text(TextBuffer& buffer, std::string_view text,
                          const ByteReplacements& replacements)
{
    // Bytes that stand for themselves are copied in whole runs.
    const char* run = text.data();
    const char* const end = run + text.size();
    for (const char* at = run; at != end; ++at) {
        const char* replacement = replacements[static_cast<unsigned char>(*at)];
        if (replacement == nullptr) {
            continue;
        }
        if (!append_run(buffer, run, at) || !text_buffer_append(buffer, replacement)) {
            return false;
        }
        run = at + 1;
    }
    return append_run(buffer, run, end);
}
