// The page's fixed texts. What they say is the business of the files beside
// page_fragments.h, which the tests in a browser judge; here they are read from there, to
// show that each gets into the page byte for byte and in the right element.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "summary/page_fragments.h"
#include "summary/page_model.h"
#include "support/call_faults.h"
#include "support/temp_folder.h"

namespace {

std::string file(const std::string& name)
{
    return read_file(FTHSUMMARY_SOURCE_FOLDER "/src/summary/" + name);
}

} // namespace

TEST(PageFragments, AreTheirFilesInOneElementEach)
{
    EXPECT_EQ(appended(append_page_styles), "<style>\n" + file("page_styles.css") + "</style>\n");
    EXPECT_EQ(appended(append_theme_toggle), file("theme_toggle.html"));
    EXPECT_EQ(appended(append_theme_script),
              "<script>\n" + file("theme_script.js") + "</script>\n");
    EXPECT_EQ(appended(append_pager_script),
              "<script>\n" + file("pager_script.js") + "</script>\n");
}

TEST(PageFragments, GiveFalseAndAppendNothingWhenMemoryRunsOut)
{
    for (const auto append :
         {append_page_styles, append_theme_toggle, append_theme_script, append_pager_script}) {
        AppendedText text;
        ASSERT_TRUE(text_buffer_append(text.buffer, "before"));
        const AllocationFault fault(1);
        EXPECT_FALSE(append(text.buffer));
        EXPECT_EQ(text.text(), "before");
    }
}
