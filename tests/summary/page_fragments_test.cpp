#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "summary/page_fragments.h"
#include "summary/page_model.h"
#include "support/allocation_faults.h"
#include "support/temp_folder.h"

namespace {

using AppendFragment = bool (*)(TextBuffer&);

std::string asset(const std::string& name)
{
    return read_file(FTHSUMMARY_SOURCE_FOLDER "/src/summary/" + name);
}

std::string fragment(AppendFragment append)
{
    AppendedText text;
    EXPECT_TRUE(append(text.buffer));
    return text.text();
}

constexpr const char* THEME_TOGGLE_LINES =
    R"(<button type="button" class="theme-toggle" id="themeToggle" aria-label="Switch to dark theme">
  <svg class="ti-sun" viewBox="0 0 24 24" fill="none" stroke="currentColor" stroke-width="2" stroke-linecap="round" stroke-linejoin="round"><circle cx="12" cy="12" r="4"/><path d="M12 2v2M12 20v2M4.93 4.93l1.41 1.41M17.66 17.66l1.41 1.41M2 12h2M20 12h2M4.93 19.07l1.41-1.41M17.66 6.34l1.41-1.41"/></svg>
  <svg class="ti-moon" viewBox="0 0 24 24" fill="none" stroke="currentColor" stroke-width="2" stroke-linecap="round" stroke-linejoin="round"><path d="M21 12.79A9 9 0 1111.21 3 7 7 0 0021 12.79z"/></svg>
</button>
)";

const std::vector<AppendFragment> FRAGMENTS = {append_page_styles, append_theme_toggle,
                                               append_theme_script, append_pager_script};

std::string lower_case(std::string text)
{
    for (char& byte : text) {
        byte = byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
    }
    return text;
}

} // namespace

TEST(PageFragments, StylesAreTheStylesheetFileInOneStyleElement)
{
    EXPECT_EQ(fragment(append_page_styles), "<style>\n" + asset("page_styles.css") + "</style>\n");
}

TEST(PageFragments, ThemeScriptIsItsFileInOneScriptElement)
{
    EXPECT_EQ(fragment(append_theme_script),
              "<script>\n" + asset("theme_script.js") + "</script>\n");
}

TEST(PageFragments, PagerScriptIsItsFileInOneScriptElement)
{
    EXPECT_EQ(fragment(append_pager_script),
              "<script>\n" + asset("pager_script.js") + "</script>\n");
}

TEST(PageFragments, ThemeToggleIsItsFileAndExactlyTheseFourLines)
{
    EXPECT_EQ(fragment(append_theme_toggle), THEME_TOGGLE_LINES);
    EXPECT_EQ(asset("theme_toggle.html"), THEME_TOGGLE_LINES);
    EXPECT_EQ(count_of("\n", THEME_TOGGLE_LINES), 4);
}

TEST(PageFragments, EachElementIsClosedOnALineOfItsOwnAndNowhereElse)
{
    for (const AppendFragment append :
         {&append_page_styles, &append_theme_script, &append_pager_script}) {
        const std::string text = lower_case(fragment(append));
        EXPECT_TRUE(text.ends_with("\n</style>\n") || text.ends_with("\n</script>\n"));
        EXPECT_EQ(count_of("</style", text) + count_of("</script", text), 1);
        EXPECT_EQ(count_of("<style", text) + count_of("<script", text), 1);
        EXPECT_EQ(count_of("<!--", text), 0);
        EXPECT_EQ(text.find('\0'), text.npos);
    }
}

TEST(PageFragments, LoadNothingFromOutsideThePage)
{
    for (const AppendFragment append : FRAGMENTS) {
        const std::string text = lower_case(fragment(append));
        for (const char* opening : {"http:", "https:", "url(", "@import", "@font-face",
                                    "src=", "fetch(", "xmlhttprequest", "import("}) {
            EXPECT_EQ(count_of(opening, text), 0) << opening;
        }
    }
}

TEST(PageFragments, ScriptsNameTheIdentifiersThatTheMarkupCarries)
{
    const std::string theme = fragment(append_theme_script);
    for (const char* name :
         {"themeToggle", "ti-sun", "ti-moon", "data-theme", "fathomix-report-theme",
          "(prefers-color-scheme: dark)", "Switch to light theme", "Switch to dark theme"}) {
        EXPECT_GE(count_of(name, theme), 1) << name;
    }
    const std::string pager = fragment(append_pager_script);
    for (const char* name : {"table[data-page-size]", "data-page-size", "tbody tr", ".overflow-x",
                             "dt-pager", "data-dt-prev", "data-dt-next", "dt-pager-status"}) {
        EXPECT_GE(count_of(name, pager), 1) << name;
    }
}

TEST(PageFragments, AreAppendedBehindWhatTheBufferHoldsAndNeverChange)
{
    AppendedText text;
    std::string expected = "before";
    ASSERT_TRUE(text_buffer_append(text.buffer, "before"));
    for (int round = 0; round < 2; ++round) {
        for (const AppendFragment append : FRAGMENTS) {
            ASSERT_TRUE(append(text.buffer));
            expected += fragment(append);
        }
    }
    EXPECT_EQ(text.text(), expected);
}

TEST(PageFragments, GiveFalseAndAppendNothingWhenMemoryRunsOut)
{
    for (const AppendFragment append : FRAGMENTS) {
        AppendedText fresh;
        AppendedText filled;
        ASSERT_TRUE(text_buffer_append(filled.buffer, "before"));
        const AllocationFault fault(1);
        EXPECT_FALSE(append(fresh.buffer));
        EXPECT_EQ(fresh.buffer.data, nullptr);
        EXPECT_EQ(fresh.buffer.length, 0U);
        EXPECT_FALSE(append(filled.buffer));
        EXPECT_STREQ(filled.buffer.data, "before");
        EXPECT_EQ(filled.buffer.length, 6U);
        EXPECT_EQ(fault.failures(), 2U);
    }
}
