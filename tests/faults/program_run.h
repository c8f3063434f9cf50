// The whole program, run inside the test program under faults.

#pragma once

#include <string>

#include "faults/forecast.h"
#include "faults/watched_run.h"
#include "faults/world.h"

// Takes what is printed to standard output and standard error, for as long as it lives.
class PrintedText
{
public:
    PrintedText();
    ~PrintedText();
    PrintedText(const PrintedText&) = delete;
    PrintedText& operator=(const PrintedText&) = delete;

    std::string output();
    std::string errors();

private:
    int output_;
    int errors_;
    int real_output_;
    int real_errors_;
};

// Runs main with the command line that World stands for, and says what came of it.
// watched watches nothing but that.
Outcome run_program(const World& world, WatchedRun& watched);
