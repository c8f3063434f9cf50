// The Other Files section.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "summary/page_model.h"
#include "summary/report_tables.h"

namespace {

const std::string OTHER_START = R"(<section class="card" id="other-files">
<div class="card-head">
<div class="htext"><h3>Other Files</h3><span class="sub">scanned, but not a fathomix analyze report</span></div>
</div>
<div class="card-body">
<div class="overflow-x"><table class="dt"><tr><th>Path</th></tr>
)";
const std::string OTHER_END = "</table></div>\n</div>\n</section>\n";

std::string other_files_section(const std::vector<ReportEntry>& entries, std::uint64_t other)
{
    AppendedText section;
    EXPECT_TRUE(append_other_files_section(section.buffer, model_of(entries), other));
    return section.text();
}

} // namespace

TEST(OtherFilesSection, IsAbsentWhenThereAreNoOtherFiles)
{
    AppendedText section;
    EXPECT_TRUE(append_other_files_section(section.buffer, model_of({}), 0));
    EXPECT_EQ(section.buffer.length, 0U);
    EXPECT_EQ(other_files_section({passed_report("a"), errored_report("b"), failed_report("c")}, 0),
              "");
}

TEST(OtherFilesSection, MarksOneUnreadableFile)
{
    EXPECT_EQ(other_files_section({unreadable_file("x.html")}, 1),
              OTHER_START + "<tr><td>x.html <small>(unreadable)</small></td></tr>\n" + OTHER_END);
}

TEST(OtherFilesSection, ListsOtherFilesInEntryOrderAndMarksUnreadableOnesOnly)
{
    EXPECT_EQ(other_files_section({unrelated_file("z/b.html"), passed_report("p.html"),
                                   unreadable_file("a.htm"), errored_report("e.html"),
                                   unrelated_file("M.HTML"), failed_report("f.html")},
                                  3),
              OTHER_START + "<tr><td>z/<wbr>b.html</td></tr>\n" +
                  "<tr><td>a.htm <small>(unreadable)</small></td></tr>\n" +
                  "<tr><td>M.HTML</td></tr>\n" + OTHER_END);
}

TEST(OtherFilesSection, EscapesPathsAndMarksTheirBreaks)
{
    const std::string path = all_bytes();
    EXPECT_EQ(
        other_files_section({unrelated_file(path.c_str()), unreadable_file("a\\<b>&'\".html")}, 2),
        OTHER_START + "<tr><td>" + escaped_path(path) + "</td></tr>\n" +
            "<tr><td>a\\<wbr>&lt;b&gt;&amp;&#39;&quot;.html <small>(unreadable)</small>"
            "</td></tr>\n" +
            OTHER_END);
}

TEST(OtherFilesSection, ListsAnEntryOfAnUnknownKindWithoutMarker)
{
    ReportEntry entry = unrelated_file("a.html");
    entry.kind = static_cast<ReportKind>(77);
    EXPECT_EQ(other_files_section({entry}, 1),
              OTHER_START + "<tr><td>a.html</td></tr>\n" + OTHER_END);
}

TEST(OtherFilesSection, IsNeverNumberedOrPagedHoweverManyRowsItHas)
{
    const std::vector<std::string> paths = numbered_paths("", 250);
    std::vector<ReportEntry> entries;
    std::string rows;
    for (const std::string& path : paths) {
        entries.push_back(unrelated_file(path.c_str()));
        rows += "<tr><td>" + path + "</td></tr>\n";
    }
    EXPECT_EQ(other_files_section(entries, 250), OTHER_START + rows + OTHER_END);
}

TEST(OtherFilesSection, ShowsAPathOf5000BytesWhole)
{
    const std::string path(5000, 'x');
    EXPECT_EQ(other_files_section({unrelated_file(path.c_str())}, 1),
              OTHER_START + "<tr><td>" + path + "</td></tr>\n" + OTHER_END);
}
