// The text buffer's invariants, and its operations against a plain array.

#pragma once

#include "core/text_buffer.h"
#include "support/input.h"

// Fails unless the buffer is empty, or has the smallest capacity of 256, 512, 1024 and so
// on that holds its text and a NUL, and the NUL is there.
void judge_buffer(const TextBuffer& buffer);

// Takes steps from the input until it is used up, and compares after each.
void judge_buffer_steps(Input& input);
