// The report reader against the tests' naive one.
//
// An input: whether a document follows as it is or in short form, whose words are the
// reader's markers and what nearly is one, and the document.

#include <array>
#include <cstring>
#include <memory>
#include <string>

#include "report/naive_scraper.h"
#include "report/read_analyze_report.h"
#include "report/visible_fields.h"
#include "support/input.h"
#include "support/require.h"
#include "support/target.h"

namespace {

constexpr std::uint8_t AS_IT_IS = 1;

constexpr std::array<std::string_view, 44> WORDS = {
    "<div class=\"k\">Overall Verdict</div>",
    "<div class=\"v\">",
    "PASS",
    "ERROR",
    "FAIL",
    "</div>",
    "<p class=\"run-error\">",
    "</p>",
    "<nav class=\"nav-tabs\">",
    "</nav>",
    "<a ",
    ">",
    "</a>",
    " data-fail",
    " data-nongating",
    "<div class=\"k\">Analysis Mode</div>\n",
    "<div class=\"kpi-sub\">",
    "\n",
    "&amp;",
    "&lt;",
    "&gt;",
    "&quot;",
    "&#39;",
    "<a data-fail>x</a>",
    "<a data-fail data-nongating>y</a>",
    "<a class=\"tab\">z</a>",
    "<div class=\"k\">Overall Verdict</div>\n<div class=\"v\">FAIL</div>\n",
    "<div class=\"k\">Overall Verdict</div>\n<div class=\"v\">PASS</div>\n",
    "<div class=\"k\">Overall Verdict</div>\n<div class=\"v\">ERROR</div>\n",
    "<div class=\"k\">Analysis Mode</div>\n<div class=\"v\">Mode</div>\n<div "
    "class=\"kpi-sub\">Sub</div>\n",
    "<div class=\"k\">Analysis Mode</div>\r\n",
    "<div class=\"k\">Overall Verdic",
    "<nav class=\"nav-tabs",
    "<p class=\"run-err",
    "<div class=\"",
    "<a\t",
    "<A ",
    "data-fail",
    " data-fai",
    " data-nongatin",
    "O",
    "Overall Verdict",
    std::string_view("\0", 1),
    "\xc3\xa9"};

constexpr std::size_t TEXT_SIZE = 3000;

void judge(std::string_view bytes)
{
    constexpr char PATH[] = "a/r.html";
    static ReportEntry entry;
    std::memset(&entry, OLD_BYTE, sizeof entry);
    // In a block that ends with the NUL that ends the document.
    const std::string_view read = bytes.substr(0, bytes.find('\0'));
    const std::unique_ptr<char[]> document(new char[read.size() + 1]);
    read.copy(document.get(), read.size());
    document[read.size()] = '\0';
    scrape_analyze_report(document.get(), PATH, entry);
    const std::string faults = faults_of(entry);
    require(faults.empty(), faults.c_str());
    require(entry.relative_path == PATH, "the path is the one that was given");
    require(visible_fields(entry) == naive_scrape(bytes), "both readers see the same report");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static std::array<char, TEXT_SIZE> text;
    Input input(data, size);
    const std::uint8_t options = input.byte();
    const auto rest = input.take_rest();
    if ((options & AS_IT_IS) != 0) {
        judge({reinterpret_cast<const char*>(rest.data()), rest.size()});
    } else {
        judge({text.data(), expand(rest, WORDS, text)});
    }
    return 0;
}
