#include "core/replaced_text.h"

namespace {

// Appending nothing would still allocate a fresh buffer's first block.
bool append_run(TextBuffer& buffer, std::string_view run)
{
    return run.empty() || text_buffer_append(buffer, run);
}

} // namespace

bool append_replaced_text(TextBuffer& buffer, std::string_view text,
                          const ByteReplacements& replacements)
{
    // Bytes that stand for themselves are copied in whole runs.
    std::size_t run = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char* replacement = replacements[static_cast<unsigned char>(text[i])];
        if (replacement == nullptr) {
            continue;
        }
        if (!append_run(buffer, text.substr(run, i - run)) ||
            !text_buffer_append(buffer, replacement)) {
            return false;
        }
        run = i + 1;
    }
    return append_run(buffer, text.substr(run));
}
