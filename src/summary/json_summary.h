// The summary as JSON (RFC 8259), its layout fixed to the byte: key order,
// 4 spaces per level, and no spaces before the "]" of an empty list of objects.

#pragma once

#include <cstdint>
#include <string_view>

#include "core/text_buffer.h"
#include "summary/summary_model.h"

// Builds the whole document in memory before it opens json_path and writes it there.
// The model's version is not used.
// False: memory ran out while building or the file could not be opened, and a file
// of that name is as it was; or it could not be written whole, and is cut or empty.
[[nodiscard]] bool write_json_summary(const char* json_path, const SummaryModel& model);

// Appends text as the inside of a JSON string: the double quote, the backslash
// and bytes below 0x20 escaped, every other byte unchanged (so text that is not
// UTF-8 gives a document that is not UTF-8). An empty text appends nothing.
// False: the buffer could not grow; it holds an unspecified part of the text.
[[nodiscard]] bool json_append_escaped(TextBuffer& buffer, std::string_view text);

// Appends count names, which lie in slots of REPORT_TEXT_SIZE bytes one after
// another from first_slot on, as a JSON array of strings on one line.
// False: the buffer could not grow; it holds an unspecified part of the array.
[[nodiscard]] bool json_append_string_array(TextBuffer& buffer,
                                            const char (*first_slot)[REPORT_TEXT_SIZE],
                                            std::uint64_t count);
