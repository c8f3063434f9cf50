#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "report/html_entities.h"
#include "report/scraped_report.h"

using namespace std::string_literals;

namespace {

constexpr char GUARD = '\x5a';
constexpr std::size_t GUARDS = 16;

// Decodes text, which stands in a block of just its size so that a sanitizer sees
// any read beyond it, into a destination of limit + 1 bytes with guard bytes
// behind it. The result is what comes before the NUL.
std::string decode(std::string_view text, std::uint64_t limit)
{
    const std::vector<char> span(text.begin(), text.end());
    std::vector<char> destination(limit + 1 + GUARDS, GUARD);
    html_copy_decoded(destination.data(), span.data(), span.data() + span.size(), limit);
    const std::string_view written(destination.data(), destination.size());
    const std::size_t nul = written.find('\0');
    EXPECT_LE(nul, limit);
    EXPECT_EQ(written.substr(limit + 1), std::string(GUARDS, GUARD));
    return std::string(written.substr(0, nul));
}

std::string decode(std::string_view text)
{
    return decode(text, text.size() + 10);
}

} // namespace

TEST(HtmlEntities, AreTheFiveReferencesInTheirOrder)
{
    ASSERT_EQ(html_entities.size(), 5U);
    EXPECT_EQ(html_entities[0].reference, "&amp;");
    EXPECT_EQ(html_entities[0].character, '&');
    EXPECT_EQ(html_entities[1].reference, "&lt;");
    EXPECT_EQ(html_entities[1].character, '<');
    EXPECT_EQ(html_entities[2].reference, "&gt;");
    EXPECT_EQ(html_entities[2].character, '>');
    EXPECT_EQ(html_entities[3].reference, "&quot;");
    EXPECT_EQ(html_entities[3].character, '"');
    EXPECT_EQ(html_entities[4].reference, "&#39;");
    EXPECT_EQ(html_entities[4].character, '\x27');
}

TEST(HtmlCopyDecoded, DecodesEachOfTheFiveReferences)
{
    EXPECT_EQ(decode("x &amp; y"), "x & y");
    EXPECT_EQ(decode("&lt;b&gt;"), "<b>");
    EXPECT_EQ(decode("&#39;"), "'");
    EXPECT_EQ(decode("&quot;"), "\"");
}

TEST(HtmlCopyDecoded, LeavesOtherReferencesAsTheyStand)
{
    for (const char* text : {"&nbsp;", "&AMP;", "&Lt;", "&LT;", "&#34;", "&#039;", "&#x27;", "&#39",
                             "&apos;", "&amp", "&amp ;", "& amp;", "&;", "&mdash;", "&#;"}) {
        EXPECT_EQ(decode(text), text);
    }
}

TEST(HtmlCopyDecoded, AnAmpersandBeforeAReferenceIsCopied)
{
    EXPECT_EQ(decode("&&amp;"), "&&");
    EXPECT_EQ(decode("&&&lt;"), "&&<");
    EXPECT_EQ(decode("&am&amp;p;"), "&am&p;");
    EXPECT_EQ(decode("&l&lt;"), "&l<");
}

TEST(HtmlCopyDecoded, ReadsWhatAReferenceYieldsNoSecondTime)
{
    EXPECT_EQ(decode("&amp;lt;"), "&lt;");
    EXPECT_EQ(decode("&amp;amp;amp;"), "&amp;amp;");
    EXPECT_EQ(decode("&amp;#39;"), "&#39;");
}

TEST(HtmlCopyDecoded, CopiesAReferenceCutByTheEndOfTheSpan)
{
    EXPECT_EQ(decode("&amp"), "&amp");
    for (const char* whole : {"&amp;", "&lt;", "&gt;", "&quot;", "&#39;"}) {
        const std::string text = whole;
        for (std::size_t length = 1; length < text.size(); ++length) {
            EXPECT_EQ(decode(text.substr(0, length)), text.substr(0, length));
        }
        EXPECT_EQ(decode(text).size(), 1U);
    }
}

TEST(HtmlCopyDecoded, AnEmptySpanGivesAnEmptyString)
{
    const char text[] = "text";
    char destination[4] = {GUARD, GUARD, GUARD, GUARD};
    html_copy_decoded(destination, text, text, 3);
    EXPECT_EQ(std::string(destination, 4), "\0\x5a\x5a\x5a"s);
}

TEST(HtmlCopyDecoded, AStartBehindTheEndGivesAnEmptyString)
{
    const char text[] = "text";
    char destination[4] = {GUARD, GUARD, GUARD, GUARD};
    html_copy_decoded(destination, text + 2, text + 1, 3);
    EXPECT_EQ(std::string(destination, 4), "\0\x5a\x5a\x5a"s);
}

TEST(HtmlCopyDecoded, ALimitOfZeroGivesAnEmptyStringAndWritesOneByte)
{
    EXPECT_EQ(decode("text", 0), "");
    EXPECT_EQ(decode("&amp;", 0), "");
    EXPECT_EQ(decode("", 0), "");
}

TEST(HtmlCopyDecoded, WhatDoesNotFitTheLimitIsDropped)
{
    EXPECT_EQ(decode("abcdef", 5), "abcde");
    EXPECT_EQ(decode("abcdef", 6), "abcdef");
    EXPECT_EQ(decode("abcdef", 7), "abcdef");
    EXPECT_EQ(decode("a&lt;b&gt;", 3), "a<b");
    EXPECT_EQ(decode("a&lt;b&gt;", 4), "a<b>");
    EXPECT_EQ(decode("a&lt;b&gt;", 5), "a<b>");
    EXPECT_EQ(decode("ab&nbsp;", 5), "ab&nb");
}

TEST(HtmlCopyDecoded, TheLimitCountsWrittenBytes)
{
    EXPECT_EQ(decode(repeated("&lt;", 700), 639), std::string(639, '<'));
    EXPECT_EQ(decode(repeated("&quot;", 639), 639), std::string(639, '"'));
    EXPECT_EQ(decode(repeated("&quot;", 638), 639), std::string(638, '"'));
    EXPECT_EQ(decode(std::string(700, 'x'), 639), std::string(639, 'x'));
}

TEST(HtmlCopyDecoded, TakesTheEndOfTheSpanForTheEndAndNotANul)
{
    const std::string text = "a\0&lt;"s;
    char destination[8] = {};
    html_copy_decoded(destination, text.data(), text.data() + text.size(), 7);
    EXPECT_EQ(std::string(destination, 4), "a\0<\0"s);
}
