// The summary page: one self-contained HTML document.

#pragma once

#include <cstddef>
#include <cstdint>

#include "core/text_buffer.h"
#include "summary/summary_model.h"

// Bytes that format_generated_time is given by the page, the NUL included.
inline constexpr std::size_t GENERATED_TIME_SIZE = 64;

// Builds the whole page in memory before it opens output_path (as typed, relative to the
// current directory) and writes it there. The folder must exist.
// False: memory ran out while building or the file could not be opened, and a file
// of that name is as it was; or it could not be written whole, and is cut or empty.
[[nodiscard]] bool write_summary_page(const char* output_path, const SummaryModel& model);

// Appends the grid of headline counts that ends in the suite verdict.
// False: the buffer could not grow; the page is to be abandoned.
[[nodiscard]] bool append_kpi_grid(TextBuffer& buffer, std::uint64_t total, std::uint64_t passed,
                                   std::uint64_t failed, std::uint64_t errored,
                                   std::uint64_t other);

// Appends the footer with the version and the time at which it is called.
// False: the buffer could not grow; the page is to be abandoned.
[[nodiscard]] bool append_page_footer(TextBuffer& buffer, const SummaryModel& model);

// Writes the current time in UTC, such as "2026-01-31 23:59:59 UTC", and its NUL
// to destination, which holds size bytes. The text has 23 characters; when size is
// below 24, or the clock gives no date, destination becomes empty (if size is not 0).
void format_generated_time(char* destination, std::size_t size);
