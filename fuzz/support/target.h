// What each target defines; libFuzzer or replay_main.cpp calls it.

#pragma once

#include <cstddef>
#include <cstdint>

// Gives one input to the code under test and judges what came of it. Returns 0;
// ends the program when something does not hold.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
