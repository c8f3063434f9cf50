#include "report/document_generator.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

using namespace std::string_literals;

// The order in which operands and arguments are evaluated is up to the compiler,
// so every random choice here is a statement of its own.

namespace {

bool one_in(Random& random, std::uint64_t count)
{
    return random_below(random, count) == 0;
}

bool percent(Random& random, std::uint64_t chance)
{
    return random_below(random, 100) < chance;
}

template <typename Choices>
std::string pick(Random& random, const Choices& choices)
{
    return std::string(choices[static_cast<std::size_t>(random_below(random, choices.size()))]);
}

// The usual text, or in three percent of the cases one of the others.
template <typename Choices>
std::string mostly(Random& random, std::string_view usual, const Choices& others)
{
    return percent(random, 97) ? std::string(usual) : pick(random, others);
}

constexpr std::string_view VERDICT_LABEL = "<div class=\"k\">Overall Verdict</div>";
constexpr std::string_view MODE_LABEL = "<div class=\"k\">Analysis Mode</div>";
constexpr std::string_view VALUE_TAG = "<div class=\"v\">";
constexpr std::string_view SUB_TAG = "<div class=\"kpi-sub\">";
constexpr std::string_view ERROR_TAG = "<p class=\"run-error\">";
constexpr std::string_view BAR_TAG = "<nav class=\"nav-tabs\">";

constexpr std::array<std::string_view, 20> TEXT_PIECES = {
    "Loudness",     "True Peak", " ",   "dB", "&amp;", "&lt;",     "&gt;", "&quot;",
    "&#39;",        "&nbsp;",    "&am", "&",  ";",     "\xc3\xa9", "<b>",  "</b>",
    "\xe2\x82\xac", "\t",        "\n",  "a"};

std::string text_of_pieces(Random& random, std::uint64_t length)
{
    std::string text;
    while (text.size() < length) {
        text += pick(random, TEXT_PIECES);
    }
    return text;
}

// Names and modes: short, around the 39 bytes that a field holds, or long.
std::string field_text(Random& random)
{
    const std::uint64_t kind = random_below(random, 10);
    if (kind == 0) {
        return "";
    }
    if (kind < 6) {
        return text_of_pieces(random, 1 + random_below(random, 12));
    }
    if (kind < 8) {
        return std::string(static_cast<std::size_t>(36 + random_below(random, 7)), 'n');
    }
    return text_of_pieces(random, 30 + random_below(random, 40));
}

std::string error_text(Random& random)
{
    switch (random_below(random, 6)) {
    case 0:
        return "";
    case 1:
        return std::string(static_cast<std::size_t>(636 + random_below(random, 7)), 'e');
    case 2: {
        std::string references;
        for (std::uint64_t count = 630 + random_below(random, 15); count > 0; --count) {
            references += "&lt;";
        }
        return references;
    }
    case 3:
        return text_of_pieces(random, 600 + random_below(random, 1500));
    default:
        return text_of_pieces(random, random_below(random, 80));
    }
}

std::string verdict(Random& random)
{
    constexpr std::array<std::string_view, 4> labels = {
        "<div class=\"k\">overall verdict</div>", "<div class='k'>Overall Verdict</div>",
        "<div class=\"k\">Overall Verdict </div>", "<div class=\"k\">Overall Verdict"};
    constexpr std::array<std::string_view, 6> gaps = {
        "\n", "\n", "", "\r\n", "\n<p>between</p>\n", "<div class=\"kpi\"><span>"};
    constexpr std::array<std::string_view, 3> tags = {"<div class=\"v \">", "<div class=\"V\">",
                                                      "<div class=\"v\" >"};
    constexpr std::array<std::string_view, 24> words = {
        "PASS",   "PASS", "PASS", "PASS", "PASS",  "PASSED", "FAIL",  "FAIL",
        "FAIL",   "FAIL", "FAIL", "FAIL", "ERROR", "ERROR",  "ERROR", "ERROR",
        "ERRORS", "Pass", "pass", "PAS",  "ERRO",  "Error",  " PASS", ""};
    std::string piece = mostly(random, VERDICT_LABEL, labels);
    piece += pick(random, gaps);
    piece += mostly(random, VALUE_TAG, tags);
    piece += pick(random, words);
    return piece + "</div>";
}

std::string error_paragraph(Random& random)
{
    constexpr std::array<std::string_view, 3> tags = {
        "<p class=\"run-error\" >", "<p class='run-error'>", "<P class=\"run-error\">"};
    constexpr std::array<std::string_view, 3> ends = {"", "</P>", "</p >"};
    std::string piece = mostly(random, ERROR_TAG, tags);
    piece += error_text(random);
    return piece + mostly(random, "</p>", ends);
}

// What a bar's failing tabs mostly are, so that some bars fill one list, some the
// other and some both.
enum class Temper
{
    Gating,
    NonGating,
    Mixed,
    Passing
};

std::string tab_attributes(Random& random, Temper temper)
{
    constexpr std::array<std::string_view, 12> others = {
        " href=\"#t\"",        " class=\"tab\"", " title=\"x data-fail\"",
        " title=\"a>b\"",      " data-fai",      " data-failed=\"1\"",
        " DATA-FAIL",          "\tdata-fail",    " data-nongatin",
        " data-nongating-too", "-data-fail",     " "};
    const std::uint64_t chance = random_below(random, 100);
    std::string attributes;
    if (one_in(random, 4)) {
        attributes += pick(random, others);
    }
    if (temper == Temper::Gating || (temper == Temper::Mixed && chance < 50)) {
        attributes += " data-fail";
    } else if (temper == Temper::NonGating || (temper == Temper::Mixed && chance < 90)) {
        attributes += one_in(random, 2) ? " data-fail data-nongating" : " data-nongating data-fail";
    } else if (chance < 10) {
        attributes += " data-nongating";
    }
    if (one_in(random, 6)) {
        attributes += pick(random, others);
    }
    return attributes;
}

std::string tab(Random& random, Temper temper)
{
    constexpr std::array<std::string_view, 6> starts = {"<A ",  "<a\t", "<a\n",
                                                        "<ab ", "< a ", "<a"};
    constexpr std::array<std::string_view, 4> ends = {"", "</A>", "</a >", "</a"};
    const bool plain = one_in(random, 2);
    std::string piece = mostly(random, plain ? "<a" : "<a href=\"#c\"", starts);
    piece += tab_attributes(random, one_in(random, 12) ? Temper::Mixed : temper);
    piece += percent(random, 98) ? ">" : "";
    piece += field_text(random);
    return piece + mostly(random, "</a>", ends);
}

std::uint64_t tab_count(Random& random)
{
    switch (random_below(random, 10)) {
    case 0:
        return 15 + random_below(random, 4);
    case 1:
        return 17 + random_below(random, 25);
    default:
        return random_below(random, 7);
    }
}

std::string bar(Random& random)
{
    constexpr std::array<std::string_view, 4> tags = {
        "<nav class=\"nav-tab\">", "<nav class='nav-tabs'>", "<nav class=\"nav-tabs\" >", "<nav>"};
    constexpr std::array<std::string_view, 3> ends = {"", "</NAV>", "</nav >"};
    constexpr std::array<std::string_view, 4> gaps = {"\n", "", "\r\n", "<span>-</span>"};
    const auto temper = static_cast<Temper>(random_below(random, 4));
    const std::string gap = pick(random, gaps);
    std::string piece = mostly(random, BAR_TAG, tags);
    piece += gap;
    for (std::uint64_t count = tab_count(random); count > 0; --count) {
        piece += tab(random, temper);
        piece += gap;
    }
    return piece + mostly(random, "</nav>", ends);
}

std::string mode_figure(Random& random)
{
    constexpr std::array<std::string_view, 4> labels = {
        "<div class=\"k\">analysis mode</div>", "<div class=\"k\">Analysis  Mode</div>",
        "<div class=\"K\">Analysis Mode</div>", "<div class=\"k\">Analysis Mode</div >"};
    constexpr std::array<std::string_view, 5> label_ends = {"\r\n", "", "\n  ", " \n", "\n\n"};
    constexpr std::array<std::string_view, 3> tags = {"<div class=\"w\">", "<div class=\"v\" >",
                                                      "<span class=\"v\">"};
    constexpr std::array<std::string_view, 3> ends = {"", "</DIV>", "</div >"};
    constexpr std::array<std::string_view, 9> gaps = {"\n", "\n",   "\n",   "\n", "",
                                                      "",   "\r\n", "\n\n", " "};
    constexpr std::array<std::string_view, 3> sub_tags = {
        "<div class=\"kpi-sub\" >", "<div class=\"kpi\">", "<div class=\"kpi_sub\">"};
    std::string piece = mostly(random, MODE_LABEL, labels);
    piece += mostly(random, "\n", label_ends);
    piece += mostly(random, VALUE_TAG, tags);
    piece += field_text(random);
    piece += mostly(random, "</div>", ends);
    if (percent(random, 75)) {
        piece += pick(random, gaps);
        piece += mostly(random, SUB_TAG, sub_tags);
        piece += field_text(random);
        piece += mostly(random, "</div>", ends);
    }
    return piece;
}

std::string noise(Random& random)
{
    constexpr std::array<std::string_view, 10> snippets = {"<!DOCTYPE html>",
                                                           "<p>text</p>",
                                                           "</div>",
                                                           "</nav>",
                                                           "</a>",
                                                           "<a data-fail>x</a>",
                                                           "</p>",
                                                           "<div class=\"v\">PASS</div>",
                                                           "<div class=\"k\">",
                                                           "<div class=\"kpi-sub\">s</div>"};
    return one_in(random, 2) ? pick(random, snippets) : text_of_pieces(random, 20);
}

void add_some(Random& random, std::vector<std::string>& pieces, std::string (*make)(Random&),
              std::uint64_t chance)
{
    while (percent(random, chance)) {
        pieces.push_back(make(random));
        chance = 8;
    }
}

std::string join_in_any_order(Random& random, std::vector<std::string> pieces)
{
    constexpr std::array<std::string_view, 4> gaps = {"\n", "\n", "", "\n\n"};
    const std::string gap = pick(random, gaps);
    std::string document;
    while (!pieces.empty()) {
        const auto next = static_cast<std::size_t>(random_below(random, pieces.size()));
        document += pieces[next];
        document += gap;
        std::swap(pieces[next], pieces.back());
        pieces.pop_back();
    }
    return document;
}

// A place inside one of the markers or just beside it, where damage tells most.
std::size_t place_at_marker(Random& random, const std::string& document)
{
    constexpr std::array<std::string_view, 16> markers = {
        VERDICT_LABEL, MODE_LABEL, VALUE_TAG, SUB_TAG, ERROR_TAG,    BAR_TAG,
        "</div>",      "</a>",     "</nav>",  "</p>",  " data-fail", " data-nongating",
        "<a ",         ">",        "&lt;",    "PASS"};
    const std::string marker = pick(random, markers);
    const std::uint64_t start = random_below(random, document.size() + 1);
    std::size_t found = document.find(marker, static_cast<std::size_t>(start));
    if (found == std::string::npos) {
        found = document.find(marker);
    }
    const std::uint64_t offset = random_below(random, marker.size() + 2);
    const std::size_t place =
        found == std::string::npos ? 0 : found + static_cast<std::size_t>(offset);
    return place < document.size() ? place : document.size();
}

std::size_t place_in(Random& random, const std::string& document)
{
    if (percent(random, 70)) {
        return place_at_marker(random, document);
    }
    return static_cast<std::size_t>(random_below(random, document.size() + 1));
}

std::string any_byte(Random& random)
{
    constexpr std::string_view telling = "<>/\"= \n\r&;aAvk-\t";
    const bool tells = percent(random, 60);
    const std::uint64_t number = random_below(random, tells ? telling.size() : 256);
    const auto index = static_cast<std::size_t>(number);
    return std::string(1, tells ? telling[index] : static_cast<char>(number));
}

std::string fragment(Random& random)
{
    constexpr std::array<std::string_view, 14> fragments = {
        "</div>", "</a>", "</nav>", "</p>",    "<a ",   ">",     " data-fail",
        "\n",     "\r",   "&amp;",  VALUE_TAG, SUB_TAG, BAR_TAG, " data-nongating"};
    return pick(random, fragments);
}

std::string with_cr_lf(const std::string& document)
{
    std::string changed;
    for (const char byte : document) {
        changed += byte == '\n' ? "\r\n"s : std::string(1, byte);
    }
    return changed;
}

std::string stretch_of(Random& random, const std::string& document)
{
    const std::size_t start = place_in(random, document);
    return document.substr(start, static_cast<std::size_t>(random_below(random, 200)));
}

std::string damaged(Random& random, const std::string& document)
{
    const std::uint64_t kind = random_below(random, 20);
    if (kind == 0) {
        return with_cr_lf(document);
    }
    if (kind == 1) {
        return document + document;
    }
    const std::size_t place = place_in(random, document);
    std::string changed = document;
    if (kind < 5) {
        changed.resize(place);
    } else if (kind < 8) {
        changed.erase(place, 1);
    } else if (kind < 11) {
        changed.replace(place, 1, any_byte(random));
    } else if (kind < 13) {
        changed.insert(place, any_byte(random));
    } else if (kind < 15) {
        changed.insert(place, 1, '\0');
    } else if (kind < 18) {
        changed.insert(place, fragment(random));
    } else if (kind < 19) {
        changed.insert(place, stretch_of(random, document));
    } else {
        changed.erase(place, static_cast<std::size_t>(random_below(random, 60)));
    }
    return changed;
}

} // namespace

std::uint64_t random_below(Random& random, std::uint64_t count)
{
    return random() % count;
}

std::string generate_document(Random& random)
{
    std::vector<std::string> pieces;
    add_some(random, pieces, verdict, 94);
    add_some(random, pieces, error_paragraph, 75);
    add_some(random, pieces, bar, 85);
    add_some(random, pieces, mode_figure, 80);
    add_some(random, pieces, noise, 50);
    std::string document = join_in_any_order(random, std::move(pieces));
    std::uint64_t damages = random_below(random, 5);
    for (; damages > 1; --damages) {
        document = damaged(random, document);
    }
    return document;
}

std::string printable(const std::string& text)
{
    constexpr std::string_view digits = "01234567";
    std::string shown;
    for (const char byte : text) {
        const auto value = static_cast<unsigned char>(byte);
        if (byte == '\n') {
            shown += "\\n\n";
        } else if (byte == '"' || byte == '\\') {
            shown += "\\"s + byte;
        } else if (value >= 0x20 && value < 0x7f) {
            shown += byte;
        } else {
            shown += "\\"s + digits[value / 64U] + digits[value / 8U % 8U] + digits[value % 8U];
        }
    }
    return shown;
}
