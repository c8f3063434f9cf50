// The Other Files section.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "summary/page_model.h"
#include "summary/report_tables.h"

namespace {

std::string other_files_section(const std::vector<ReportEntry>& entries, std::uint64_t other)
{
    return appended([&](TextBuffer& buffer) {
        return append_other_files_section(buffer, model_of(entries), other);
    });
}

// What one sees of its rows.
std::vector<std::string> listed(const std::vector<ReportEntry>& entries)
{
    const std::vector<PageTable> tables = read_tables(other_files_section(entries, entries.size()));
    EXPECT_EQ(tables.size(), 1U);
    EXPECT_EQ(tables.at(0).page_size, "");
    EXPECT_FALSE(tables.at(0).has_pager);
    std::vector<std::string> rows;
    for (const PageRow& row : tables.at(0).rows) {
        EXPECT_EQ(row.cells.size(), 1U);
        EXPECT_EQ(row.link, "");
        rows.push_back(row.cells.at(0));
    }
    return rows;
}

using Rows = std::vector<std::string>;

} // namespace

TEST(OtherFilesSection, IsAbsentWhenThereAreNoOtherFiles)
{
    EXPECT_EQ(other_files_section({}, 0), "");
    EXPECT_EQ(other_files_section({passed_report("a"), errored_report("b"), failed_report("c")}, 0),
              "");
}

TEST(OtherFilesSection, IsThisMarkupAndMarksOneUnreadableFile)
{
    EXPECT_EQ(other_files_section({unrelated_file("a/<b>"), unreadable_file("x.html")}, 2),
              R"(<section class="card" id="other-files">
<div class="card-head">
<div class="htext"><h3>Other Files</h3><span class="sub">scanned, but not a fathomix analyze report</span></div>
</div>
<div class="card-body">
<div class="overflow-x"><table class="dt"><tr><th>Path</th></tr>
<tr><td>a/<wbr>&lt;b&gt;</td></tr>
<tr><td>x.html <small>(unreadable)</small></td></tr>
</table></div>
</div>
</section>
)");
}

TEST(OtherFilesSection, ListsOtherFilesInEntryOrderAndMarksUnreadableOnesOnly)
{
    EXPECT_EQ(listed({unrelated_file("z/b.html"), passed_report("p.html"), unreadable_file("a.htm"),
                      errored_report("e.html"), unrelated_file("M.HTML"), failed_report("f.html")}),
              (Rows{"z/b.html", "a.htm (unreadable)", "M.HTML"}));
}

TEST(OtherFilesSection, ShowsPathsOfAnyBytesAndLengthWhole)
{
    const std::string bytes = all_bytes();
    const std::string path(5000, 'x');
    EXPECT_EQ(listed({unrelated_file(bytes.c_str()), unreadable_file(path.c_str())}),
              (Rows{bytes, path + " (unreadable)"}));
}

TEST(OtherFilesSection, IsNeverNumberedOrPagedHoweverManyRowsItHas)
{
    const Rows paths = numbered_paths("", 250);
    EXPECT_EQ(listed(entries_of(paths, unrelated_file)), paths);
}
