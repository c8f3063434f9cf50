// The cells of one row of the Results tables.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "summary/page_model.h"

namespace {

std::string between(const std::string& text, std::string_view before, std::string_view after)
{
    const std::size_t at = text.find(before);
    const std::size_t start = at + before.size();
    const std::size_t end = at == text.npos ? text.npos : text.find(after, start);
    if (end == text.npos) {
        ADD_FAILURE() << "no " << before << " ... " << after << " in:\n" << text;
        return "";
    }
    return text.substr(start, end - start);
}

// The one row of the first table of a section with only this entry.
std::string row_of(const ReportEntry& entry)
{
    return between(results_section({entry}), "<tbody>\n", "</tbody>");
}

// The link text of a report with this path.
std::string shown_name(const std::string& path)
{
    const std::string row = row_of(passed_report(path.c_str()));
    return between(row, "<a href=\"" + escaped(path) + "\">", "</a></td><td>");
}

std::string mode_cell(std::string_view mode, std::string_view sub_mode)
{
    ReportEntry entry = passed_report("a.html");
    set_modes(entry, mode, sub_mode);
    return between(row_of(entry), "<tr><td>1</td><td><a href=\"a.html\">a</a></td><td>",
                   "</td><td><span class=\"badge pass\">PASS</span></td><td>&mdash;</td></tr>\n");
}

std::string checks_cell(ReportEntry entry, const std::vector<std::string>& failed,
                        const std::vector<std::string>& non_gating)
{
    set_failed_checks(entry, failed);
    set_non_gating_checks(entry, non_gating);
    const std::string badge = entry.passed == 1 ? "<span class=\"badge pass\">PASS</span>"
                                                : "<span class=\"badge fail\">FAIL</span>";
    return between(row_of(entry),
                   "<tr><td>1</td><td><a href=\"a.html\">a</a></td><td>&mdash;</td><td>" + badge +
                       "</td><td>",
                   "</td></tr>\n");
}

std::string failed_checks_cell(const std::vector<std::string>& failed,
                               const std::vector<std::string>& non_gating)
{
    return checks_cell(failed_report("a.html"), failed, non_gating);
}

std::string reason_cell(std::string_view error)
{
    return between(row_of(errored_report("a.html", error)),
                   "<tr><td>1</td><td><a href=\"a.html\">a</a></td><td>"
                   "<span class=\"badge fail\">ERROR</span></td><td style=\"text-align:left\">",
                   "</td></tr>\n");
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

const std::string SIXTEEN_SHOWN = "a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p";

std::vector<std::string> sixteen_names()
{
    return {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n", "o", "p"};
}

} // namespace

TEST(AnalyzedRow, HoldsNumberLinkModeBadgeAndChecks)
{
    ReportEntry entry = failed_report("album/track01.html");
    set_modes(entry, "Mode X", "Variant 1");
    set_failed_checks(entry, {"Check A", "Check B"});
    set_non_gating_checks(entry, {"Check C"});
    EXPECT_EQ(row_of(entry),
              "<tr><td>1</td><td><a href=\"album/track01.html\">album/<wbr>track01</a></td>"
              "<td>Mode X <span style=\"color:var(--muted);font-size:0.85em\">&middot; Variant 1"
              "</span></td><td><span class=\"badge fail\">FAIL</span></td><td>Check A, Check B<br>"
              "<span style=\"color:var(--muted);font-size:0.85em\">Not gating: Check C</span>"
              "</td></tr>\n");
}

TEST(AnalyzedRow, NeverShowsAnErrorText)
{
    ReportEntry entry = passed_report("a.html");
    entry.error[0] = 'E';
    EXPECT_EQ(row_of(entry), row_of(passed_report("a.html")));
}

TEST(ErroredRow, HoldsNumberLinkBadgeAndReason)
{
    EXPECT_EQ(row_of(errored_report("album/track02.htm", "could not open")),
              "<tr><td>1</td><td><a href=\"album/track02.htm\">album/<wbr>track02</a></td>"
              "<td><span class=\"badge fail\">ERROR</span></td>"
              "<td style=\"text-align:left\">could not open</td></tr>\n");
}

TEST(ErroredRow, ShowsNeitherModesNorChecks)
{
    ReportEntry entry = errored_report("a.html", "reason");
    set_modes(entry, "Mode X", "Variant 1");
    set_failed_checks(entry, {"Check A"});
    set_non_gating_checks(entry, {"Check B"});
    EXPECT_EQ(row_of(entry), row_of(errored_report("a.html", "reason")));
}

TEST(ErroredRow, ShowsADashForAnEmptyReason)
{
    EXPECT_EQ(reason_cell(""), "&mdash;");
}

TEST(ErroredRow, EscapesTheReasonWithoutBreakMarks)
{
    EXPECT_EQ(reason_cell("Input \"a/b.wav\" <&> 'c' \\ d"),
              "Input &quot;a/b.wav&quot; &lt;&amp;&gt; &#39;c&#39; \\ d");
    EXPECT_EQ(reason_cell("&amp;"), "&amp;amp;");
    EXPECT_EQ(reason_cell(all_bytes()), escaped(all_bytes()));
}

TEST(ErroredRow, ShowsAReasonOf639BytesWhole)
{
    EXPECT_EQ(reason_cell(std::string(638, 'e') + "\xc3"), std::string(638, 'e') + "\xc3");
}

TEST(ShownName, LosesTheEndingsHtmlAndHtmInLowerCaseOnly)
{
    EXPECT_EQ(shown_name("index.htm"), "index");
    EXPECT_EQ(shown_name("index.html"), "index");
    EXPECT_EQ(shown_name("INDEX.HTML"), "INDEX.HTML");
    EXPECT_EQ(shown_name("INDEX.HTM"), "INDEX.HTM");
    EXPECT_EQ(shown_name("index.Html"), "index.Html");
    EXPECT_EQ(shown_name("index.htM"), "index.htM");
    EXPECT_EQ(shown_name("index.html "), "index.html ");
    EXPECT_EQ(shown_name("indexhtml"), "indexhtml");
    EXPECT_EQ(shown_name("index.txt"), "index.txt");
}

TEST(ShownName, IsEmptyForAPathOfExactlyTheEnding)
{
    EXPECT_EQ(shown_name(".html"), "");
    EXPECT_EQ(shown_name(".htm"), "");
    EXPECT_EQ(shown_name(""), "");
}

TEST(ShownName, KeepsPathsShorterThanTheEnding)
{
    EXPECT_EQ(shown_name("html"), "html");
    EXPECT_EQ(shown_name("htm"), "htm");
    EXPECT_EQ(shown_name("l"), "l");
}

TEST(ShownName, LosesOneEndingOnly)
{
    EXPECT_EQ(shown_name("x.htm.html"), "x.htm");
    EXPECT_EQ(shown_name("x.html.htm"), "x.html");
    EXPECT_EQ(shown_name("x.html.html"), "x.html");
    EXPECT_EQ(shown_name("x.html/y"), "x.html/<wbr>y");
}

TEST(ShownName, EndsInTheFolderForAFileNamedJustLikeTheEnding)
{
    EXPECT_EQ(shown_name("a/.html"), "a/<wbr>");
}

TEST(ShownName, IsCutToItsFirst4095BytesAfterTheEndingWasDropped)
{
    const std::string name(4095, 'x');
    EXPECT_EQ(shown_name(name.substr(1) + ".html"), name.substr(1));
    EXPECT_EQ(shown_name(name + ".html"), name);
    EXPECT_EQ(shown_name(name + "y.html"), name);
    EXPECT_EQ(shown_name(name + ".htm"), name);
    EXPECT_EQ(shown_name(name + "y.htm"), name);
    EXPECT_EQ(shown_name(name), name);
    EXPECT_EQ(shown_name(name + "y"), name);
    EXPECT_EQ(shown_name(name + std::string(5000, 'y') + ".html"), name);
}

TEST(ShownName, IsCutBeforeItIsEscaped)
{
    EXPECT_EQ(shown_name(std::string(4094, 'x') + "&y.html"), std::string(4094, 'x') + "&amp;");
    EXPECT_EQ(shown_name(std::string(4094, 'x') + "/y.html"), std::string(4094, 'x') + "/<wbr>");
    std::string ampersands;
    for (int i = 0; i < 4094; ++i) {
        ampersands += "&amp;";
    }
    EXPECT_EQ(shown_name(std::string(4094, '&') + "\xc3\xa4.html"), ampersands + "\xc3");
}

TEST(ShownName, IsEscapedAndGetsABreakMarkAfterEachSeparatorWhileTheHrefDoesNot)
{
    EXPECT_EQ(row_of(passed_report("a/b\\<c>&'\".html")),
              "<tr><td>1</td><td><a href=\"a/b\\&lt;c&gt;&amp;&#39;&quot;.html\">"
              "a/<wbr>b\\<wbr>&lt;c&gt;&amp;&#39;&quot;</a></td><td>&mdash;</td>"
              "<td><span class=\"badge pass\">PASS</span></td><td>&mdash;</td></tr>\n");
}

TEST(ShownName, PassesEveryOtherByteThrough)
{
    EXPECT_EQ(shown_name(all_bytes()), escaped_path(all_bytes()));
}

TEST(ModeCell, ShowsOnlyADashForAnEmptyModeWithASetSubMode)
{
    EXPECT_EQ(mode_cell("", "Variant 1"), "&mdash;");
    EXPECT_EQ(mode_cell("", ""), "&mdash;");
}

TEST(ModeCell, ShowsAModeWithoutSubMode)
{
    EXPECT_EQ(mode_cell("Mode X", ""), "Mode X");
}

TEST(ModeCell, ShowsTheSubModeInAMutedSpan)
{
    EXPECT_EQ(
        mode_cell("Mode X", "Variant 1"),
        "Mode X <span style=\"color:var(--muted);font-size:0.85em\">&middot; Variant 1</span>");
}

TEST(ModeCell, EscapesBothTextsWithoutBreakMarks)
{
    for (const std::string& piece : all_bytes_in_pieces()) {
        EXPECT_EQ(mode_cell(piece, piece),
                  escaped(piece) +
                      " <span style=\"color:var(--muted);font-size:0.85em\">&middot; " +
                      escaped(piece) + "</span>");
    }
    EXPECT_EQ(mode_cell("a/b\\c", "d/e\\f"),
              "a/b\\c <span style=\"color:var(--muted);font-size:0.85em\">&middot; d/e\\f</span>");
}

TEST(ChecksCell, ShowsADashWithoutAnyChecks)
{
    EXPECT_EQ(failed_checks_cell({}, {}), "&mdash;");
    EXPECT_EQ(checks_cell(passed_report("a.html"), {}, {}), "&mdash;");
}

TEST(ChecksCell, FailedChecksAAndBWithNonGatingCheckCAreParted)
{
    EXPECT_EQ(failed_checks_cell({"A", "B"}, {"C"}),
              "A, B<br><span style=\"color:var(--muted);font-size:0.85em\">Not gating: C</span>");
}

TEST(ChecksCell, PassedReportWithNonGatingChecksOnlyHasNoLineBreak)
{
    EXPECT_EQ(checks_cell(passed_report("a.html"), {}, {"C", "D"}),
              "<span style=\"color:var(--muted);font-size:0.85em\">Not gating: C, D</span>");
}

TEST(ChecksCell, ShowsNoneOneAndSixteenNamesOfEitherKind)
{
    const std::string span = "<span style=\"color:var(--muted);font-size:0.85em\">Not gating: ";
    EXPECT_EQ(failed_checks_cell({"A"}, {}), "A");
    EXPECT_EQ(failed_checks_cell(sixteen_names(), {}), SIXTEEN_SHOWN);
    EXPECT_EQ(failed_checks_cell({}, {"A"}), span + "A</span>");
    EXPECT_EQ(failed_checks_cell({"A"}, {"B"}), "A<br>" + span + "B</span>");
    EXPECT_EQ(failed_checks_cell(sixteen_names(), {"A"}),
              SIXTEEN_SHOWN + "<br>" + span + "A</span>");
    EXPECT_EQ(failed_checks_cell({}, sixteen_names()), span + SIXTEEN_SHOWN + "</span>");
    EXPECT_EQ(failed_checks_cell({"A"}, sixteen_names()),
              "A<br>" + span + SIXTEEN_SHOWN + "</span>");
    EXPECT_EQ(failed_checks_cell(sixteen_names(), sixteen_names()),
              SIXTEEN_SHOWN + "<br>" + span + SIXTEEN_SHOWN + "</span>");
}

TEST(ChecksCell, ShowsEmptyAndFullNames)
{
    const std::string full(39, 'f');
    EXPECT_EQ(failed_checks_cell({"", full, ""}, {"", full}),
              ", " + full +
                  ", <br><span style=\"color:var(--muted);font-size:0.85em\">Not gating: , " +
                  full + "</span>");
}

TEST(ChecksCell, EscapesEveryNameWithoutBreakMarks)
{
    for (const std::string& piece : all_bytes_in_pieces()) {
        EXPECT_EQ(failed_checks_cell({piece, "x"}, {piece, "y"}),
                  escaped(piece) +
                      ", x<br><span style=\"color:var(--muted);font-size:0.85em\">Not gating: " +
                      escaped(piece) + ", y</span>");
    }
    EXPECT_EQ(failed_checks_cell({"a<b", "c&d", "e/f"}, {}), "a&lt;b, c&amp;d, e/f");
}
