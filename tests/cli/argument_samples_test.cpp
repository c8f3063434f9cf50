// The built program on samples of the lists that argument_lists_test.cpp tries in full,
// against the same model.

#include <algorithm>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "cli/argument_model.h"
#include "cli/program_run.h"
#include "cli/sample_reports.h"
#include "support/build_speed.h"

namespace {

// Lists that go through the program itself: of any kind, and complete ones.
constexpr int PROGRAM_RUNS = IS_FAST_BUILD ? 200 : 50;

std::string json_beside(const std::string& page)
{
    const bool is_html = page.ends_with(".html");
    return (is_html ? page.substr(0, page.size() - 5) : page) + ".json";
}

// In a folder that holds d/r.html, a passed report, and nothing else.
struct ProgramOutcome
{
    int status = 1;
    std::string output = {};
    std::string errors = {};
    std::vector<std::string> files = {}; // written ones
};

ProgramOutcome program_outcome(const Meaning& meaning)
{
    if (meaning.outcome != CommandLineOutcome::Run) {
        const bool answered = meaning.outcome == CommandLineOutcome::Answered;
        return {answered ? 0 : 1, meaning.output, meaning.errors};
    }
    const std::string page = meaning.page;
    if (std::string(meaning.input) != "d") {
        return {.errors = input_message(meaning.input)};
    }
    if (page.empty() || page == "d") {
        return {.errors = write_message(page)};
    }
    ProgramOutcome outcome = {.status = 0, .files = {page}};
    outcome.output = "wrote " + page + " (1 fathomix reports: 1 passed, 0 failed)";
    if (meaning.json) {
        outcome.files.push_back(json_beside(page));
        outcome.output += " + json\nwrote " + outcome.files.back();
    }
    outcome.output += "\n";
    return outcome;
}

void expect_from_program(const TempFolder& temp, const Words& words)
{
    SCOPED_TRACE("arguments:" + shown(words));
    const ProgramOutcome expected = program_outcome(meaning_of(words));
    expect_run(run_in(temp, {words.begin(), words.end()}), expected.status, expected.output,
               expected.errors);
    std::vector<std::string> names = {"d", "d/r.html"};
    names.insert(names.end(), expected.files.begin(), expected.files.end());
    std::sort(names.begin(), names.end());
    ASSERT_EQ(temp.names(), names);
    for (const std::string& file : expected.files) {
        ASSERT_EQ(unlink(temp.path(file).c_str()), 0);
    }
}

// The standard distributions differ from library to library.
template <typename Choices>
const char* any_of(std::mt19937_64& random, const Choices& choices)
{
    return choices[static_cast<std::size_t>(random() % choices.size())];
}

} // namespace

TEST(ArgumentSamples, OfAFixedSampleDoInTheProgramWhatTheModelSays)
{
    const TempFolder temp;
    temp.write("d/r.html", passed_report());
    std::mt19937_64 random(4);
    for (int run = 0; run < PROGRAM_RUNS && !HasFatalFailure(); ++run) {
        Words words(static_cast<std::size_t>(random() % (LONGEST + 1)));
        std::generate(words.begin(), words.end(), [&] { return any_of(random, VOCABULARY); });
        expect_from_program(temp, words);
    }
    std::cout << PROGRAM_RUNS << " runs\n";
}

TEST(ArgumentSamples, ThatAreCompleteDoInTheProgramWhatTheModelSays)
{
    const TempFolder temp;
    temp.write("d/r.html", passed_report());
    std::mt19937_64 random(5);
    int written = 0;
    for (int run = 0; run < PROGRAM_RUNS && !HasFatalFailure(); ++run) {
        const char* input = random() % 4 == 0 ? any_of(random, VOCABULARY) : "d";
        Words words = {"--input", input, "-o", any_of(random, VOCABULARY)};
        if (random() % 2 == 0) {
            std::rotate(words.begin(), words.begin() + 2, words.end());
        }
        if (random() % 2 == 0) {
            words.insert(words.begin() + static_cast<std::ptrdiff_t>(random() % 3 * 2), "--json");
        }
        expect_from_program(temp, words);
        written += program_outcome(meaning_of(words)).files.empty() ? 0 : 1;
    }
    EXPECT_GE(written, PROGRAM_RUNS / 2);
    std::cout << PROGRAM_RUNS << " runs, " << written << " of them wrote a page\n";
}
