// What the walk asks the system: nothing whose answer it knows already.

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cli/sample_reports.h"
#include "support/process.h"
#include "support/temp_folder.h"

namespace fs = std::filesystem;

namespace {

struct Questions
{
    std::ptrdiff_t examined = 0; // entries whose type was asked for
    std::ptrdiff_t entered = 0;  // folders, or what was taken for one
    std::ptrdiff_t resolved = 0; // entries whose canonical path was asked for
};

// The lines of a trace of these system calls by the program, which runs over temp's
// folder "in" as an ordinary user and writes "s.html" and "s.json".
std::vector<std::string> traced(const TempFolder& temp, const std::string& calls)
{
    temp.chmod("", 0777);
    const ProcessResult result =
        run_process("/usr/bin/env",
                    {"strace", "-f", "-y", "-s", "200", "-e", "trace=" + calls, "-o", "trace",
                     fthsummary_program(), "--input", temp.path("in"), "-o", "s.html", "--json"},
                    {.folder = temp.path(),
                     .unprivileged = true,
                     .environment = {"ASAN_OPTIONS=detect_leaks=0"}});
    EXPECT_EQ(result.errors, "") << "is strace installed?";
    EXPECT_TRUE(result.output.starts_with("wrote s.html"));
    std::vector<std::string> lines;
    std::istringstream trace(temp.read("trace"));
    for (std::string line; std::getline(trace, line);) {
        lines.push_back(line);
    }
    return lines;
}

// Counts the calls on what lies below the folder "in".
Questions questions_about(const TempFolder& temp)
{
    Questions questions;
    for (const std::string& line : traced(temp, "file")) {
        if (line.find('"' + temp.path("in/")) == std::string::npos) {
            continue;
        }
        const std::string call = line.substr(0, line.find('('));
        questions.examined += call.ends_with("stat") || call.ends_with("fstatat") ? 1 : 0;
        questions.entered += line.find("O_DIRECTORY") != std::string::npos ? 1 : 0;
        questions.resolved += call.find("readlink") != std::string::npos ? 1 : 0;
    }
    return questions;
}

void write_reports(const TempFolder& temp, const std::string& folder, int count)
{
    for (int i = 0; i < count; ++i) {
        temp.write(folder + "/r" + std::to_string(i) + ".html", passed_report());
    }
}

} // namespace

TEST(AskedSystem, OneReportOfAFolderIsExaminedForAll)
{
    const TempFolder temp(folder_in_memory()); // where listings are believed
    write_reports(temp, "in", 5);
    write_reports(temp, "in/below", 5);
    fs::remove(temp.path("in/r0.html"));
    for (const char* name : {"in/below/a", "in/below/b.txt", "in/below/c"}) {
        temp.write(name, "");
    }
    const std::vector<fs::path> order(fs::directory_iterator(temp.path("in")), {});
    const bool folder_first = order.front().filename() == "below";
    const Questions asked = questions_about(temp);
    EXPECT_EQ(asked.examined, folder_first ? 1 : 2) << "having entered a folder is enough";
    EXPECT_EQ(asked.entered, 1);
    EXPECT_EQ(asked.resolved, 0);
}

TEST(AskedSystem, WhatCannotBeAReportIsNotExamined)
{
    const TempFolder temp(folder_in_memory()); // where listings are believed
    for (const char* name : {"in/a", "in/b.txt", "in/c.htm.gz"}) {
        temp.write(name, "");
    }
    const Questions asked = questions_about(temp);
    EXPECT_EQ(asked.examined, 0);
    EXPECT_EQ(asked.entered, 0);
}

TEST(AskedSystem, EachLinkIsExaminedAndOnlyAFolderEntered)
{
    const TempFolder temp(folder_in_memory()); // where listings are believed
    temp.write("text", "");
    temp.make_folder("folder");
    temp.link("../text", "in/one");
    temp.link("../text", "in/two.html");
    temp.link("nowhere", "in/three.html");
    temp.link("../folder", "in/four");
    const Questions asked = questions_about(temp);
    EXPECT_EQ(asked.examined, 4);
    EXPECT_EQ(asked.entered, 1);
}

TEST(AskedSystem, AFolderThatCannotBeEnteredChangesNothing)
{
    const TempFolder temp(folder_in_memory()); // where listings are believed
    for (int i = 0; i < 8; ++i) {
        const std::string number = std::to_string(i);
        temp.write("in/r" + number + ".html", passed_report());
        temp.make_folder("in/closed" + number);
        temp.chmod("in/closed" + number, 0);
    }
    const Questions asked = questions_about(temp);
    EXPECT_EQ(asked.examined, 1);
    EXPECT_EQ(asked.entered, 8);
}

TEST(AskedSystem, OnlyWhatIsCalledLikeThePageIsResolved)
{
    const TempFolder temp(folder_in_memory()); // where listings are believed
    write_reports(temp, "in", 5);
    temp.write("s.html", "an older page");
    temp.chmod("s.html", 0666);
    EXPECT_EQ(questions_about(temp).resolved, 0);
    temp.write("in/s.html", passed_report());
    EXPECT_EQ(questions_about(temp).resolved, 1);
}

TEST(AskedSystem, EachOutputFileIsHandedOverInOneCall)
{
    const TempFolder temp(folder_in_memory()); // where listings are believed
    write_reports(temp, "in", 5);
    const auto lines = traced(temp, "write,writev,pwrite64,pwritev,pwritev2");
    for (const char* name : {"s.html", "s.json"}) {
        std::vector<std::string> calls;
        std::ranges::copy_if(lines, std::back_inserter(calls), [&](const std::string& line) {
            return line.find("<" + temp.path(name) + ">") != std::string::npos;
        });
        ASSERT_EQ(calls.size(), 1U) << name;
        EXPECT_TRUE(calls[0].ends_with(" = " + std::to_string(temp.read(name).size()))) << calls[0];
    }
}
