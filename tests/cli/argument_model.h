// What a list of arguments means: a model of the command line, and the words that lists
// are made of.

#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "cli/command_line.h"
#include "cli/expected_texts.h"

using Words = std::vector<const char*>;

inline constexpr std::array<const char*, 18> VOCABULARY = {
    "--input", "-o",        "--json",   "--version", "--help",  "-h", "d",  "s.html", "",
    "--bogus", "--input=d", "-os.html", "--inp",     "--jsonx", "-",  "--", "--JSON", "-v"};

// Words of the longest lists.
inline constexpr std::size_t LONGEST = 4;

inline std::string shown(const Words& words)
{
    std::string text;
    for (const char* word : words) {
        text += " [" + std::string(word) + "]";
    }
    return text;
}

struct Meaning
{
    CommandLineOutcome outcome = CommandLineOutcome::Run;
    std::string output = {};
    std::string errors = {};
    const char* input = nullptr;
    const char* page = nullptr;
    bool json = false;
};

inline Meaning answer(std::string_view text)
{
    return {.outcome = CommandLineOutcome::Answered, .output = std::string(text)};
}

inline Meaning rejection(const std::string& message)
{
    return {.outcome = CommandLineOutcome::Rejected, .errors = message};
}

// What the words from this one on mean, when those before have meant so_far.
inline Meaning meaning_of(const Words& words, std::size_t at, Meaning so_far)
{
    if (at == words.size()) {
        const bool complete = so_far.input != nullptr && so_far.page != nullptr;
        return complete ? so_far : rejection(missing_options_message());
    }
    const std::string word = words[at];
    const bool is_last = at + 1 == words.size();
    if (word == "--input" && !is_last) {
        so_far.input = words[at + 1];
        return meaning_of(words, at + 2, so_far);
    }
    if (word == "-o" && !is_last) {
        so_far.page = words[at + 1];
        return meaning_of(words, at + 2, so_far);
    }
    if (word == "--json") {
        so_far.json = true;
        return meaning_of(words, at + 1, so_far);
    }
    if (word == "--version") {
        return answer(VERSION_LINE);
    }
    if (word == "--help" || word == "-h") {
        return answer(USAGE);
    }
    return rejection(unrecognized_message(word));
}

inline Meaning meaning_of(const Words& words)
{
    return meaning_of(words, 0, {});
}
