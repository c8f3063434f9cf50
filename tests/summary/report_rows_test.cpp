// The cells of one row of the Results tables. Two whole rows stand here as they are
// written; every other test looks at what one sees of them.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "report/html_escape.h"
#include "summary/page_model.h"

namespace {

const std::string DASH = "\xe2\x80\x94";
const std::string DOT = "\xc2\xb7";

// The markup of the one row of a section with only this entry.
std::string row_of(const ReportEntry& entry)
{
    const std::string section = results_section({entry});
    const std::size_t start = section.find("<tr><td>");
    return section.substr(start, section.find("\n", start) + 1 - start);
}

// What one sees of it, from the second cell on: the name, and so on. No text but the
// name may hold marks for line breaks.
std::vector<std::string> cells_of(const ReportEntry& entry)
{
    const std::string section = results_section({entry});
    EXPECT_LE(section.rfind("<wbr>") + 1, section.find("</a>") + 1);
    for (const PageTable& table : read_tables(section)) {
        if (!table.rows.empty()) {
            const std::vector<std::string>& cells = table.rows[0].cells;
            return {cells.begin() + 1, cells.end()};
        }
    }
    return {};
}

using Cells = std::vector<std::string>;

std::string shown_name(const std::string& path)
{
    return cells_of(passed_report(path.c_str())).at(0);
}

std::string mode_cell(std::string_view mode, std::string_view sub_mode)
{
    ReportEntry entry = passed_report("a.html");
    set_modes(entry, mode, sub_mode);
    return cells_of(entry).at(1);
}

std::string checks_cell(ReportEntry entry, const std::vector<std::string>& failed,
                        const std::vector<std::string>& non_gating)
{
    set_failed_checks(entry, failed);
    set_non_gating_checks(entry, non_gating);
    return cells_of(entry).at(3);
}

std::string failed_checks_cell(const std::vector<std::string>& failed,
                               const std::vector<std::string>& non_gating)
{
    return checks_cell(failed_report("a.html"), failed, non_gating);
}

std::string reason_cell(std::string_view error)
{
    return cells_of(errored_report("a.html", error)).at(2);
}

// All byte values in pieces that fit into a field of 40 bytes.
std::vector<std::string> all_bytes_in_pieces()
{
    const std::string bytes = all_bytes();
    std::vector<std::string> pieces;
    for (std::size_t at = 0; at < bytes.size(); at += 39) {
        pieces.push_back(bytes.substr(at, 39));
    }
    return pieces;
}

} // namespace

TEST(AnalyzedRow, HoldsNumberLinkModeBadgeAndChecksEscaped)
{
    ReportEntry entry = failed_report("album/<1>.html");
    set_modes(entry, "Mode & X", "Variant <1>");
    set_failed_checks(entry, {"Check A", "Check & B"});
    set_non_gating_checks(entry, {"Check C", "Check <D>"});
    EXPECT_EQ(row_of(entry),
              "<tr><td>1</td><td><a href=\"album/&lt;1&gt;.html\">album/<wbr>&lt;1&gt;</a></td>"
              "<td>Mode &amp; X <span style=\"color:var(--muted);font-size:0.85em\">&middot; "
              "Variant &lt;1&gt;</span></td><td><span class=\"badge fail\">FAIL</span></td>"
              "<td>Check A, Check &amp; B<br>"
              "<span style=\"color:var(--muted);font-size:0.85em\">Not gating: Check C, "
              "Check &lt;D&gt;</span></td></tr>\n");
}

TEST(AnalyzedRow, OfAPassedReportHoldsItsBadgeAndDashes)
{
    EXPECT_EQ(row_of(passed_report("a.htm")),
              "<tr><td>1</td><td><a href=\"a.htm\">a</a></td><td>&mdash;</td>"
              "<td><span class=\"badge pass\">PASS</span></td><td>&mdash;</td></tr>\n");
}

TEST(ErroredRow, HoldsNumberLinkBadgeAndReasonEscaped)
{
    EXPECT_EQ(row_of(errored_report("album/track02.htm", "Input \"a/b.wav\" <&> 'c' \\ d")),
              "<tr><td>1</td><td><a href=\"album/track02.htm\">album/<wbr>track02</a></td>"
              "<td><span class=\"badge fail\">ERROR</span></td><td style=\"text-align:left\">"
              "Input &quot;a/b.wav&quot; &lt;&amp;&gt; &#39;c&#39; \\ d</td></tr>\n");
}

TEST(ErroredRow, ShowsADashForAnEmptyReasonAndAnyOtherWhole)
{
    EXPECT_EQ(reason_cell(""), DASH);
    EXPECT_EQ(reason_cell("&amp;"), "&amp;");
    EXPECT_EQ(reason_cell(all_bytes()), all_bytes());
    EXPECT_EQ(reason_cell(std::string(638, 'e') + "\xc3"), std::string(638, 'e') + "\xc3");
}

TEST(ShownName, LosesTheEndingsHtmlAndHtmInLowerCaseOnly)
{
    EXPECT_EQ(shown_name("index.htm"), "index");
    EXPECT_EQ(shown_name("index.html"), "index");
    for (const char* path : {"INDEX.HTML", "INDEX.HTM", "index.Html", "index.htM", "index.html ",
                             "indexhtml", "index.txt", "html", "htm", "l"}) {
        EXPECT_EQ(shown_name(path), path);
    }
}

TEST(ShownName, IsEmptyForAPathOfExactlyTheEnding)
{
    EXPECT_EQ(shown_name(".html"), "");
    EXPECT_EQ(shown_name(".htm"), "");
    EXPECT_EQ(shown_name(""), "");
    EXPECT_EQ(shown_name("a/.html"), "a/");
}

TEST(ShownName, LosesOneEndingOnly)
{
    EXPECT_EQ(shown_name("x.htm.html"), "x.htm");
    EXPECT_EQ(shown_name("x.html.htm"), "x.html");
    EXPECT_EQ(shown_name("x.html/y"), "x.html/y");
}

TEST(ShownName, IsCutToItsFirst4095BytesAfterTheEndingWasDroppedAndBeforeItIsEscaped)
{
    const std::string name(4095, '&');
    EXPECT_EQ(shown_name(name.substr(1) + ".html"), name.substr(1));
    EXPECT_EQ(shown_name(name + ".html"), name);
    EXPECT_EQ(shown_name(name + "y.html"), name);
    EXPECT_EQ(shown_name(name + "y.htm"), name);
    EXPECT_EQ(shown_name(name + "y"), name);
    EXPECT_EQ(shown_name(name + std::string(5000, 'y') + ".html"), name);
}

TEST(ShownName, GetsABreakMarkAfterEachSeparatorWhileTheLinkDoesNot)
{
    const std::string path = "a/b\\c/" + all_bytes();
    const std::string row = row_of(passed_report(path.c_str()));
    const std::string link =
        appended([&](TextBuffer& buffer) { return html_append_escaped(buffer, path); });
    const std::string name =
        appended([&](TextBuffer& buffer) { return html_append_escaped_path(buffer, path); });
    EXPECT_EQ(count_of("<a href=\"" + link + "\">" + name + "</a>",
                       results_section({passed_report(path.c_str())})),
              1);
    EXPECT_EQ(shown_name(path), path);
}

TEST(ModeCell, ShowsOnlyADashForAnEmptyModeWithASetSubMode)
{
    EXPECT_EQ(mode_cell("", "Variant 1"), DASH);
    EXPECT_EQ(mode_cell("", ""), DASH);
}

TEST(ModeCell, ShowsTheSubModeBehindTheModeIfThereIsOne)
{
    EXPECT_EQ(mode_cell("Mode X", ""), "Mode X");
    EXPECT_EQ(mode_cell("a/b\\c", "d/e\\f"), "a/b\\c " + DOT + " d/e\\f");
    for (const std::string& piece : all_bytes_in_pieces()) {
        EXPECT_EQ(mode_cell(piece, piece), piece + " " + DOT + " " + piece);
    }
}

TEST(ChecksCell, ShowsADashWithoutAnyChecks)
{
    EXPECT_EQ(failed_checks_cell({}, {}), DASH);
    EXPECT_EQ(checks_cell(passed_report("a.html"), {}, {}), DASH);
}

TEST(ChecksCell, FailedChecksAAndBWithNonGatingCheckCAreParted)
{
    EXPECT_EQ(failed_checks_cell({"A", "B"}, {"C"}), "A, B\nNot gating: C");
}

TEST(ChecksCell, PassedReportWithNonGatingChecksOnlyHasNoLineBreak)
{
    EXPECT_EQ(checks_cell(passed_report("a.html"), {}, {"C", "D"}), "Not gating: C, D");
}

TEST(ChecksCell, ShowsOneAndSixteenNamesOfEitherKind)
{
    const Cells sixteen = {"a", "b", "c", "d", "e", "f", "g", "h",
                           "i", "j", "k", "l", "m", "n", "o", "p"};
    const std::string all = "a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p";
    EXPECT_EQ(failed_checks_cell({"A"}, {}), "A");
    EXPECT_EQ(failed_checks_cell(sixteen, {}), all);
    EXPECT_EQ(failed_checks_cell({}, {"A"}), "Not gating: A");
    EXPECT_EQ(failed_checks_cell(sixteen, sixteen), all + "\nNot gating: " + all);
}

TEST(ChecksCell, ShowsEmptyAndFullNamesOfAnyBytes)
{
    const std::string full(39, 'f');
    EXPECT_EQ(failed_checks_cell({"", full, "e/f"}, {"", full}),
              ", " + full + ", e/f\nNot gating: , " + full);
    for (const std::string& piece : all_bytes_in_pieces()) {
        EXPECT_EQ(failed_checks_cell({piece, "x"}, {piece, "y"}),
                  piece + ", x\nNot gating: " + piece + ", y");
    }
}
