// The command line on every list of up to four words, and on complete command lines
// with any two words more, against a model.

#include <array>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include "cli/argument_model.h"

namespace {

// While it lives, what goes to one of the process's streams goes to memory.
class Recorder
{
public:
    explicit Recorder(std::FILE* stream)
        : stream_(stream), own_(dup(fileno(stream))), memory_(memfd_create("stream", 0))
    {
        std::fflush(stream);
        if (own_ < 0 || memory_ < 0 || dup2(memory_, fileno(stream)) < 0) {
            std::abort();
        }
    }

    ~Recorder()
    {
        std::fflush(stream_);
        dup2(own_, fileno(stream_));
        close(own_);
        close(memory_);
    }

    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // What went there since the last time.
    std::string take() const
    {
        std::fflush(stream_);
        std::string text(static_cast<std::size_t>(lseek(memory_, 0, SEEK_CUR)), '\0');
        const ssize_t count = pread(memory_, text.data(), text.size(), 0);
        if (count != static_cast<ssize_t>(text.size()) || lseek(memory_, 0, SEEK_SET) != 0) {
            std::abort();
        }
        return text;
    }

private:
    std::FILE* stream_;
    int own_;
    int memory_;
};

// Parses lists and keeps the first that does not do what the model says. Nothing may
// be said about it while the streams are recorded.
class Comparison
{
public:
    void compare(const Words& words)
    {
        Words argv = {"fthsummary"};
        argv.insert(argv.end(), words.begin(), words.end());
        argv.push_back(nullptr);
        CommandLine options = {"stale input", "stale page", true};
        const int argc = static_cast<int>(argv.size() - 1);
        const CommandLineOutcome outcome = parse_command_line(argc, argv.data(), options);
        const std::string written = output_.take();
        const std::string complained = errors_.take();

        const Meaning meaning = meaning_of(words);
        const bool same_options =
            meaning.outcome != CommandLineOutcome::Run ||
            (options.input_dir == meaning.input && options.page_path == meaning.page &&
             options.wants_json == meaning.json);
        ++lists;
        ++outcomes.at(static_cast<std::size_t>(meaning.outcome));
        if (first_different.empty() && (outcome != meaning.outcome || written != meaning.output ||
                                        complained != meaning.errors || !same_options)) {
            first_different = "differs for" + shown(words);
        }
    }

    std::uint64_t lists = 0;
    std::array<std::uint64_t, 3> outcomes = {}; // runs, answers, rejections
    std::string first_different;

private:
    Recorder output_{stdout};
    Recorder errors_{stderr};
};

template <typename Visit>
void visit_lists(Words& words, const Visit& visit)
{
    visit(words);
    if (words.size() == LONGEST) {
        return;
    }
    for (const char* word : VOCABULARY) {
        words.push_back(word);
        visit_lists(words, visit);
        words.pop_back();
    }
}

Words with_two_more(std::size_t first_place, const char* first, std::size_t second_place,
                    const char* second)
{
    Words words = {"--input", "d", "-o", "s.html"};
    words.insert(words.begin() + static_cast<std::ptrdiff_t>(second_place), second);
    words.insert(words.begin() + static_cast<std::ptrdiff_t>(first_place), first);
    return words;
}

} // namespace

TEST(ArgumentLists, OfUpToFourWordsMeanWhatTheModelSays)
{
    std::string first_different;
    std::uint64_t lists = 0;
    std::array<std::uint64_t, 3> outcomes = {};
    {
        Comparison comparison;
        Words words;
        visit_lists(words, [&comparison](const Words& list) { comparison.compare(list); });
        first_different = comparison.first_different;
        lists = comparison.lists;
        outcomes = comparison.outcomes;
    }
    EXPECT_EQ(first_different, "");
    EXPECT_EQ(lists, 1U + 18 + 324 + 5832 + 104976);
    // One option, then the other, each with any value; nothing else is complete.
    EXPECT_EQ(outcomes[0], 2U * 18 * 18);
    // Of lists of n words, a(n) = 3 * 18^(n-1) + a(n-1) + 36 * a(n-2) answer: those that
    // begin with one of three words, with --json, or with an option and its value.
    EXPECT_EQ(outcomes[1], 3U + 57 + 1137 + 20685);
    EXPECT_EQ(outcomes[0] + outcomes[1] + outcomes[2], lists);
    std::cout << lists << " lists: " << outcomes[0] << " runs, " << outcomes[1] << " answers, "
              << outcomes[2] << " rejections\n";
}

TEST(ArgumentLists, CompleteOnesWithAnyTwoWordsMoreMeanWhatTheModelSays)
{
    std::string first_different;
    std::uint64_t lists = 0;
    {
        Comparison comparison;
        for (std::size_t second_place = 0; second_place <= 4; ++second_place) {
            for (std::size_t first_place = 0; first_place <= second_place; ++first_place) {
                for (const char* first : VOCABULARY) {
                    for (const char* second : VOCABULARY) {
                        comparison.compare(with_two_more(first_place, first, second_place, second));
                    }
                }
            }
        }
        first_different = comparison.first_different;
        lists = comparison.lists;
    }
    EXPECT_EQ(first_different, "");
    EXPECT_EQ(lists, 15U * 18 * 18);
}
