// Where the links of the Results tables start, and what they lead to.

#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "summary/page_model.h"
#include "summary/report_links.h"
#include "support/temp_folder.h"

namespace {

ResultsLinkContext context_of(const char* input_dir, const std::string& output_path)
{
    ResultsLinkContext context;
    std::memset(&context, 0xAA, sizeof context);
    make_results_link_context(input_dir, output_path, context);
    return context;
}

// The folder from which the page at output_path would be linked; "unresolved" when
// links are to be the bare paths.
std::string output_folder(const std::string& output_path)
{
    const ResultsLinkContext context = context_of(".", output_path);
    return context.links_relative ? context.output_folder : "unresolved";
}

ResultsLinkContext resolved_context(const std::string& scanned_directory, const std::string& folder)
{
    ResultsLinkContext context;
    std::memset(&context, 0xAA, sizeof context);
    context.links_relative = true;
    scanned_directory.copy(context.scanned_directory, PATH_BUFFER_SIZE - 1);
    context.scanned_directory[scanned_directory.size()] = '\0';
    folder.copy(context.output_folder, PATH_BUFFER_SIZE - 1);
    context.output_folder[folder.size()] = '\0';
    return context;
}

// The link of a report with this path as it stands in an attribute.
std::string href(const ResultsLinkContext& context, const std::string& relative_path)
{
    const ReportEntry entry = passed_report(relative_path.c_str());
    return appended([&](TextBuffer& buffer) { return append_link_target(buffer, entry, context); });
}

// The same where it stands in the page.
std::string section_href(const ReportEntry& entry, const char* input_dir, const char* output_path)
{
    return linked_paths(read_tables(results_section({entry}, input_dir, output_path))).at(0);
}

} // namespace

TEST(ResultsLinkContext, OutputPathWithoutASlashLiesInTheCurrentFolder)
{
    const TempFolder folder;
    const CurrentFolder current(folder.path());
    EXPECT_EQ(output_folder("summary.html"), folder.path());
    EXPECT_EQ(output_folder(""), folder.path());
}

TEST(ResultsLinkContext, OutputPathWithItsOnlySlashInFrontLiesInTheRoot)
{
    EXPECT_EQ(output_folder("/summary.html"), "/");
    EXPECT_EQ(output_folder("/"), "/");
}

TEST(ResultsLinkContext, OutputFolderIsTheTextBeforeTheLastSlash)
{
    const TempFolder folder;
    folder.make_folder("a/b");
    const CurrentFolder current(folder.path());
    EXPECT_EQ(output_folder("a/s.html"), folder.path("a"));
    EXPECT_EQ(output_folder("a/b/s.html"), folder.path("a/b"));
    EXPECT_EQ(output_folder("a/b/"), folder.path("a/b"));
    EXPECT_EQ(output_folder("a//s.html"), folder.path("a"));
    EXPECT_EQ(output_folder("a/b/../s.html"), folder.path("a"));
    EXPECT_EQ(output_folder("./s.html"), folder.path());
    EXPECT_EQ(output_folder(folder.path("a/s.html")), folder.path("a"));
    EXPECT_EQ(output_folder("//s.html"), "/");
}

TEST(ResultsLinkContext, BackslashDoesNotSeparateTheOutputFolder)
{
    const TempFolder folder;
    folder.make_folder("out");
    folder.make_folder("in\\out");
    const CurrentFolder current(folder.path());
    EXPECT_EQ(output_folder("out\\s.html"), folder.path());
    EXPECT_EQ(output_folder("in\\out/s.html"), folder.path("in\\out"));
    EXPECT_EQ(output_folder("out/a\\s.html"), folder.path("out"));
}

TEST(ResultsLinkContext, OutputFolderIsCutToItsFirst4095Bytes)
{
    const TempFolder folder;
    folder.make_folder("real/x");
    folder.make_folder("real/xy");
    folder.make_folder("real/xyz");
    const CurrentFolder current(folder.path());
    std::string dots = "real";
    while (dots.size() < 4092) {
        dots += "/.";
    }
    ASSERT_EQ(dots.size(), 4092U);
    EXPECT_EQ(output_folder(dots + "/xy/s.html"), folder.path("real/xy"));
    EXPECT_EQ(output_folder(dots + "/xyz/s.html"), folder.path("real/xy"));
    EXPECT_EQ(output_folder(dots + "/xy/missing/s.html"), folder.path("real/xy"));
    EXPECT_EQ(output_folder(dots + "/x/s.html"), folder.path("real/x"));
}

TEST(ResultsLinkContext, OutputFolderThatCannotBeResolvedMakesLinksBare)
{
    const TempFolder folder;
    folder.write("file", "");
    const CurrentFolder current(folder.path());
    EXPECT_FALSE(context_of(".", "missing/s.html").links_relative);
    EXPECT_FALSE(context_of(".", "missing/../s.html").links_relative);
    EXPECT_FALSE(context_of(".", "file/sub/s.html").links_relative);
    EXPECT_FALSE(context_of(".", std::string(300, 'n') + "/s.html").links_relative);
}

TEST(ResultsLinkContext, BothFoldersAreCanonical)
{
    const TempFolder folder;
    folder.make_folder("reports/2024");
    folder.make_folder("deep/out");
    folder.link("../reports/2024", "links/in");
    folder.link("../deep/out", "links/out");
    const CurrentFolder current(folder.path());
    const ResultsLinkContext context = context_of("links//in/./", "links/out/s.html");
    ASSERT_TRUE(context.links_relative);
    EXPECT_STREQ(context.scanned_directory, folder.path("reports/2024").c_str());
    EXPECT_STREQ(context.output_folder, folder.path("deep/out").c_str());
}

TEST(ResultsLinks, LeadFromThePagesFolderToTheReportInEveryTable)
{
    const TempFolder folder;
    folder.make_folder("in/a");
    folder.make_folder("out");
    const CurrentFolder current(folder.path());
    for (const ReportEntry& entry :
         {passed_report("a/r.html"), failed_report("a/r.html"), errored_report("a/r.html")}) {
        EXPECT_EQ(section_href(entry, "in", "out/s.html"), "../in/a/r.html");
        EXPECT_EQ(section_href(entry, "in", "s.html"), "in/a/r.html");
        EXPECT_EQ(section_href(entry, "in", "in/s.html"), "a/r.html");
        EXPECT_EQ(section_href(entry, "in", "in/a/s.html"), "r.html");
        EXPECT_EQ(section_href(entry, ".", "out/s.html"), "../a/r.html");
        EXPECT_EQ(section_href(entry, "in/", "./out/../out/s.html"), "../in/a/r.html");
    }
}

TEST(ResultsLinks, LeadFromANewFolderOnceItIsThere)
{
    const TempFolder folder;
    folder.make_folder("in");
    const CurrentFolder current(folder.path());
    EXPECT_EQ(section_href(passed_report("r.html"), "in", "new/deep/s.html"), "r.html");
    folder.make_folder("new/deep");
    EXPECT_EQ(section_href(passed_report("r.html"), "in", "new/deep/s.html"), "../../in/r.html");
}

TEST(ResultsLinks, AreTheBarePathsWhenEitherFolderCannotBeResolved)
{
    EXPECT_EQ(section_href(passed_report("a/r.html"), "no such folder", "s.html"), "a/r.html");
    EXPECT_EQ(section_href(errored_report("a/r.html"), ".", "no such folder/s.html"), "a/r.html");
}

TEST(ResultsLinks, AreEscapedAndGetNoBreakMarks)
{
    const ResultsLinkContext context = resolved_context("/in & <out>", "/data");
    EXPECT_EQ(href(context, "a\"b'/c&d<e>/f g#h?i%j.html"),
              "../in &amp; &lt;out&gt;/a&quot;b&#39;/c&amp;d&lt;e&gt;/f g#h?i%j.html");
    EXPECT_EQ(href(context, "\x01\t\n\x7f\x80\xff.html"),
              "../in &amp; &lt;out&gt;/\x01\t\n\x7f\x80\xff.html");
}

TEST(ResultsLinks, TakeABackslashInANameForASeparatorUnlessTheyAreBare)
{
    EXPECT_EQ(href(resolved_context("/in", "/in"), "a\\b.html"), "a/b.html");
    ResultsLinkContext bare = resolved_context("/in", "/in");
    bare.links_relative = false;
    EXPECT_EQ(href(bare, "a\\b.html"), "a\\b.html");
}

TEST(ResultsLinks, JoinedPathOf8191CharactersIsLinkedAndOf8192IsBare)
{
    const ResultsLinkContext context = resolved_context("/in", "/in");
    const std::string fits = std::string(8187, 'x');
    ASSERT_EQ(("/in/" + fits).size(), 8191U);
    EXPECT_EQ(href(context, fits), std::string(255, 'x'));
    EXPECT_EQ(href(context, fits + "x"), fits + "x");
    EXPECT_EQ(href(context, fits + std::string(5000, 'x')), fits + std::string(5000, 'x'));
}
