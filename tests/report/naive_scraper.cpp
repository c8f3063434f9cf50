#include "report/naive_scraper.h"

#include <cstddef>
#include <utility>

namespace {

constexpr std::size_t NOWHERE = static_cast<std::size_t>(-1);

bool stands_at(const std::string& text, std::size_t position, const std::string& pattern)
{
    if (position + pattern.size() > text.size()) {
        return false;
    }
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (text[position + i] != pattern[i]) {
            return false;
        }
    }
    return true;
}

std::size_t first_at_or_after(const std::string& text, std::size_t from, const std::string& pattern)
{
    for (std::size_t position = from; position < text.size(); ++position) {
        if (stands_at(text, position, pattern)) {
            return position;
        }
    }
    return NOWHERE;
}

bool contains(const std::string& text, const std::string& pattern)
{
    return first_at_or_after(text, 0, pattern) != NOWHERE;
}

std::string between(const std::string& text, std::size_t start, std::size_t end)
{
    std::string piece;
    for (std::size_t position = start; position < end; ++position) {
        piece += text[position];
    }
    return piece;
}

std::string cut_to(const std::string& text, std::size_t most)
{
    return between(text, 0, text.size() < most ? text.size() : most);
}

std::string up_to_first_nul(const std::string& file)
{
    std::string text;
    for (const char byte : file) {
        if (byte == '\0') {
            break;
        }
        text += byte;
    }
    return text;
}

std::string decoded(const std::string& text)
{
    const std::vector<std::pair<std::string, char>> references = {
        {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&#39;", '\''}};
    std::string result;
    std::size_t position = 0;
    while (position < text.size()) {
        char byte = text[position];
        std::size_t taken = 1;
        for (const auto& [reference, character] : references) {
            if (stands_at(text, position, reference)) {
                byte = character;
                taken = reference.size();
            }
        }
        result += byte;
        position += taken;
    }
    return result;
}

// The word that follows the verdict label; "" also when there is no value.
std::string verdict_word(const std::string& text, std::size_t label)
{
    const std::string tag = "<div class=\"v\">";
    const std::size_t value = first_at_or_after(text, label, tag);
    return value == NOWHERE ? "" : between(text, value + tag.size(), text.size());
}

std::string run_error(const std::string& text)
{
    const std::string tag = "<p class=\"run-error\">";
    const std::size_t paragraph = first_at_or_after(text, 0, tag);
    if (paragraph == NOWHERE) {
        return "";
    }
    const std::size_t start = paragraph + tag.size();
    const std::size_t end = first_at_or_after(text, start, "</p>");
    return end == NOWHERE ? "" : cut_to(decoded(between(text, start, end)), 639);
}

// The bar without its "</nav>", as a text of its own: whatever is found in it
// lies before the end. "" when there is no whole bar.
std::string tab_bar(const std::string& text)
{
    const std::size_t start = first_at_or_after(text, 0, "<nav class=\"nav-tabs\">");
    if (start == NOWHERE) {
        return "";
    }
    const std::size_t end = first_at_or_after(text, start, "</nav>");
    return end == NOWHERE ? "" : between(text, start, end);
}

void read_tabs(const std::string& bar, NaiveEntry& entry)
{
    std::size_t cursor = 0;
    while (entry.failed_checks.size() < 16 && entry.non_gating_checks.size() < 16) {
        const std::size_t tab = first_at_or_after(bar, cursor, "<a ");
        if (tab == NOWHERE) {
            return;
        }
        const std::size_t tag_end = first_at_or_after(bar, tab, ">");
        if (tag_end == NOWHERE) {
            return;
        }
        const std::size_t name_end = first_at_or_after(bar, tag_end + 1, "</a>");
        if (name_end == NOWHERE) {
            return;
        }
        cursor = name_end + 4;
        const std::string tag = between(bar, tab, tag_end);
        const std::string name = cut_to(between(bar, tag_end + 1, name_end), 39);
        if (contains(tag, " data-fail") && contains(tag, " data-nongating")) {
            entry.non_gating_checks.push_back(name);
        } else if (contains(tag, " data-fail")) {
            entry.failed_checks.push_back(name);
        }
    }
}

void read_mode(const std::string& text, NaiveEntry& entry)
{
    const std::string label = "<div class=\"k\">Analysis Mode</div>\n";
    const std::string tag = "<div class=\"v\">";
    const std::string sub_tag = "<div class=\"kpi-sub\">";
    const std::string close = "</div>";

    const std::size_t figure = first_at_or_after(text, 0, label);
    if (figure == NOWHERE || !stands_at(text, figure + label.size(), tag)) {
        return;
    }
    const std::size_t mode = figure + label.size() + tag.size();
    const std::size_t mode_end = first_at_or_after(text, mode, close);
    if (mode_end == NOWHERE) {
        return;
    }
    entry.analysis_mode = cut_to(between(text, mode, mode_end), 39);

    std::size_t next = mode_end + close.size();
    if (stands_at(text, next, "\n")) {
        next += 1;
    }
    if (!stands_at(text, next, sub_tag)) {
        return;
    }
    const std::size_t sub = next + sub_tag.size();
    const std::size_t sub_end = first_at_or_after(text, sub, close);
    if (sub_end != NOWHERE) {
        entry.analysis_mode_sub = cut_to(between(text, sub, sub_end), 39);
    }
}

void move_failed_checks(NaiveEntry& entry)
{
    for (const std::string& name : entry.failed_checks) {
        if (entry.non_gating_checks.size() < 16) {
            entry.non_gating_checks.push_back(name);
            entry.moved_names += 1;
        } else {
            entry.dropped_names += 1;
        }
    }
    entry.failed_checks.clear();
}

} // namespace

NaiveEntry naive_scrape(const std::string& file)
{
    NaiveEntry entry;
    const std::string text = up_to_first_nul(file);
    const std::size_t label = first_at_or_after(text, 0, "<div class=\"k\">Overall Verdict</div>");
    if (label == NOWHERE) {
        return entry;
    }
    const std::string word = verdict_word(text, label);
    if (stands_at(word, 0, "ERROR")) {
        entry.kind = ReportKind::RunError;
        entry.error = run_error(text);
        return entry;
    }
    entry.kind = ReportKind::Analyzed;
    entry.passed = stands_at(word, 0, "PASS");
    read_tabs(tab_bar(text), entry);
    read_mode(text, entry);
    if (entry.passed) {
        move_failed_checks(entry);
    }
    return entry;
}
