// parse_command_line against its rules read literally: outcome, options, and what it
// prints on which stream.
//
// An input: whether there is an argv[0] at all, and the arguments in short form, each
// ended by a NUL. The options are words.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "cli/command_line.h"
#include "cli/expected_texts.h"
#include "support/input.h"
#include "support/require.h"
#include "support/target.h"

namespace {

constexpr std::array<std::string_view, 16> WORDS = {std::string_view("--input\0", 8),
                                                    std::string_view("-o\0", 3),
                                                    std::string_view("--json\0", 7),
                                                    std::string_view("--version\0", 10),
                                                    std::string_view("--help\0", 7),
                                                    std::string_view("-h\0", 3),
                                                    std::string_view("dir\0", 4),
                                                    std::string_view("s.html\0", 7),
                                                    "--input",
                                                    "-o",
                                                    "--json",
                                                    "--version",
                                                    "--help",
                                                    "-h",
                                                    "--",
                                                    "%s%n"};

constexpr std::size_t TEXT_SIZE = 2048;
constexpr std::size_t MOST_ARGUMENTS = 128;

// What was, or is to be, printed on one stream.
struct Printed
{
    std::array<char, 2 * TEXT_SIZE> bytes;
    std::size_t length;
};

void add(Printed& printed, std::string_view text)
{
    require(text.size() <= printed.bytes.size() - printed.length, "so much is never printed");
    text.copy(printed.bytes.data() + printed.length, text.size());
    printed.length += text.size();
}

bool same(const Printed& first, const Printed& second)
{
    return first.length == second.length &&
           std::memcmp(first.bytes.data(), second.bytes.data(), first.length) == 0;
}

ssize_t keep(void* cookie, const char* bytes, std::size_t size)
{
    add(*static_cast<Printed*>(cookie), {bytes, size});
    return static_cast<ssize_t>(size);
}

std::FILE* stream_into(Printed& printed)
{
    cookie_io_functions_t functions = {};
    functions.write = keep;
    std::FILE* stream = fopencookie(&printed, "w", functions);
    require(stream != nullptr, "a stream can be made");
    return stream;
}

struct Arguments
{
    int count; // argv[0] included
    std::array<const char*, MOST_ARGUMENTS + 2> texts;
};

struct Result
{
    CommandLineOutcome outcome;
    CommandLine options;
    Printed out;
    Printed err;
};

void expect_refusal(Result& result, std::string_view first, std::string_view argument,
                    std::string_view last)
{
    result.outcome = CommandLineOutcome::Rejected;
    add(result.err, first);
    add(result.err, argument);
    add(result.err, last);
    add(result.err, USAGE);
}

void expect(const Arguments& arguments, Result& result)
{
    result.options = {nullptr, nullptr, false};
    result.out.length = 0;
    result.err.length = 0;
    int i = 1;
    while (i < arguments.count) {
        const char* argument = arguments.texts[static_cast<std::size_t>(i)];
        const char* next =
            i + 1 == arguments.count ? nullptr : arguments.texts[static_cast<std::size_t>(i) + 1];
        if (std::strcmp(argument, "--input") == 0 && next != nullptr) {
            result.options.input_dir = next;
            i += 2;
        } else if (std::strcmp(argument, "-o") == 0 && next != nullptr) {
            result.options.page_path = next;
            i += 2;
        } else if (std::strcmp(argument, "--json") == 0) {
            result.options.wants_json = true;
            i += 1;
        } else if (std::strcmp(argument, "--version") == 0) {
            result.outcome = CommandLineOutcome::Answered;
            add(result.out, VERSION_LINE);
            return;
        } else if (std::strcmp(argument, "--help") == 0 || std::strcmp(argument, "-h") == 0) {
            result.outcome = CommandLineOutcome::Answered;
            add(result.out, USAGE);
            return;
        } else {
            expect_refusal(result, "error: unrecognized argument '", argument, "'\n\n");
            return;
        }
    }
    result.outcome = CommandLineOutcome::Run;
    if (result.options.input_dir == nullptr || result.options.page_path == nullptr) {
        expect_refusal(result, "error: fthsummary requires --input and -o\n\n", "", "");
    }
}

void run(const Arguments& arguments, Result& result)
{
    static std::FILE* const out = stream_into(result.out);
    static std::FILE* const err = stream_into(result.err);
    result.out.length = 0;
    result.err.length = 0;

    std::FILE* const real_out = stdout;
    std::FILE* const real_err = stderr;
    stdout = out;
    stderr = err;
    result.outcome = parse_command_line(arguments.count, arguments.texts.data(), result.options);
    stdout = real_out;
    stderr = real_err;
    std::fflush(out);
    std::fflush(err);
}

// Bytes behind the last NUL are the last argument.
void split(const char* text, std::size_t length, Arguments& arguments)
{
    std::size_t start = 0;
    while (start < length && arguments.count <= static_cast<int>(MOST_ARGUMENTS)) {
        arguments.texts[static_cast<std::size_t>(arguments.count++)] = text + start;
        start += std::strlen(text + start) + 1;
    }
    arguments.texts[static_cast<std::size_t>(arguments.count)] = nullptr;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static std::array<char, TEXT_SIZE> text;
    static Arguments arguments;
    static Result expected;
    static Result result;

    Input input(data, size);
    arguments.texts[0] = "fthsummary";
    arguments.count = input.byte() == 0xff ? 0 : 1;
    if (arguments.count == 1) {
        const std::size_t length = expand(input.take_rest(), WORDS, {text.data(), text.size() - 1});
        text[length] = '\0';
        split(text.data(), length, arguments);
    }
    run(arguments, result);
    expect(arguments, expected);

    require(result.outcome == expected.outcome, "the outcome");
    require(same(result.out, expected.out), "what is printed on standard output");
    require(same(result.err, expected.err), "what is printed on standard error");
    require(result.outcome != CommandLineOutcome::Run ||
                (result.options.input_dir == expected.options.input_dir &&
                 result.options.page_path == expected.options.page_path &&
                 result.options.wants_json == expected.options.wants_json),
            "the options");
    return 0;
}
