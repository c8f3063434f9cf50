// Writes a tree of made-up reports to measure with. The same arguments always give
// the same bytes.
//
//   make_corpus small|big|mixed FOLDER
//   make_corpus tiny COUNT FOLDER

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t SEED = 20260101;

// Small and the same everywhere (splitmix64, public domain by its author S. Vigna).
class Random
{
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t below(std::uint64_t limit)
    {
        state_ += 0x9e3779b97f4a7c15U;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30U)) * 0xbf58476d1ce4e5b9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94d049bb133111ebU;
        return (mixed ^ (mixed >> 31U)) % limit;
    }

private:
    std::uint64_t state_;
};

[[noreturn]] void fail(const char* what, const std::string& name)
{
    std::fprintf(stderr, "make_corpus: %s %s\n", what, name.c_str());
    std::exit(1);
}

void write(const fs::path& path, const std::string& bytes)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        fail("cannot create", path.string());
    }
    const bool complete = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (std::fclose(file) != 0 || !complete) {
        fail("cannot write", path.string());
    }
}

constexpr std::string_view STYLE =
    ".kpi { border: 1px solid #ccd; border-radius: 8px; padding: 12px }\n"
    ".plot path { fill: none; stroke: #1f77b4; stroke-width: 1.2 }\n"
    "table td { text-align: right; font-variant-numeric: tabular-nums }\n";

constexpr std::string_view CHECKS[] = {
    "Loudness", "True Peak", "Clipping", "Dropouts",        "Noise Floor",
    "Balance",  "DC Offset", "Spectrum", "Sample Accuracy", "Phase &amp; Polarity"};
constexpr std::uint64_t CHECK_COUNT = sizeof CHECKS / sizeof CHECKS[0];

void append_head(std::string& page, std::size_t style_bytes)
{
    page += "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<style>\n";
    const std::size_t end = page.size() + style_bytes;
    while (page.size() < end) {
        page += STYLE;
    }
    page += "</style>\n</head>\n<body>\n";
}

// 80 % PASS, 15 % FAIL, 5 % ERROR.
void append_figures(std::string& page, Random& random)
{
    const std::uint64_t die = random.below(100);
    const bool errored = die >= 95;
    const bool passed = die < 80;
    page += "<div class=\"k\">Overall Verdict</div>\n<div class=\"v\">";
    page += errored ? "ERROR" : passed ? "PASS" : "FAIL";
    page += "</div>\n";
    if (errored) {
        page += "<p class=\"run-error\">Input &quot;take " + std::to_string(random.below(100)) +
                ".wav&quot; could not be opened: no such file &amp; no fallback</p>\n";
        return;
    }
    page += "<div class=\"k\">Analysis Mode</div>\n<div class=\"v\">Reference comparison</div>\n"
            "<div class=\"kpi-sub\">48 kHz, 24 bit</div>\n<nav class=\"nav-tabs\">\n";
    for (std::uint64_t i = 0; i < CHECK_COUNT; ++i) {
        const bool fails = !passed && random.below(4) == 0;
        page += "<a href=\"#check-" + std::to_string(i) + "\" class=\"tab\"";
        page += fails ? " data-fail" : "";
        page += fails && random.below(3) == 0 ? " data-nongating>" : ">";
        page += CHECKS[i];
        page += "</a>\n";
    }
    page += "</nav>\n";
}

void append_plot(std::string& page, Random& random)
{
    page += "<svg class=\"plot\" viewBox=\"0 0 600 200\"><path d=\"M0,100";
    for (int x = 0; x < 60; ++x) {
        page += " L" + std::to_string(x * 10) + "," + std::to_string(random.below(200));
    }
    page += "\"/></svg>\n";
}

void append_data(std::string& page, Random& random)
{
    page += "<script type=\"application/json\">{\"points\":[";
    for (int i = 0; i < 80; ++i) {
        page += std::to_string(random.below(100000)) + ",";
    }
    page += "0]}</script>\n";
}

void append_table(std::string& page, Random& random)
{
    page += "<div class=\"card\"><div class=\"tile-row\">";
    for (int i = 0; i < 8; ++i) {
        page += "<div class=\"tile\"><a href=\"#t" + std::to_string(random.below(1000)) +
                "\">Band " + std::to_string(i) + "</a></div>";
    }
    page += "</div></div>\n";
}

// Fills the page with sections up to its size.
void append_body(std::string& page, Random& random, std::size_t size)
{
    while (page.size() < size) {
        append_plot(page, random);
        append_table(page, random);
        append_data(page, random);
    }
    page += "</body>\n</html>\n";
}

std::string make_report(Random& random, std::size_t size)
{
    std::string page;
    append_head(page, size / 6 < 6000 ? size / 6 : 6000);
    append_figures(page, random);
    append_body(page, random, size);
    return page;
}

std::string make_other_page(Random& random, std::size_t size)
{
    std::string page;
    append_head(page, 2000);
    append_body(page, random, size);
    return page;
}

fs::path make_folder(const fs::path& root, const char* kind, std::uint64_t number)
{
    fs::path folder = root / (std::string(kind) + "-" + std::to_string(number));
    fs::create_directories(folder);
    return folder;
}

std::string numbered(const char* stem, std::uint64_t number, const char* ending)
{
    return stem + std::to_string(number) + ending;
}

void write_reports(const fs::path& root, std::uint64_t count, std::uint64_t per_folder,
                   std::size_t size)
{
    Random random(SEED);
    fs::path folder;
    for (std::uint64_t i = 0; i < count; ++i) {
        if (i % per_folder == 0) {
            folder = make_folder(root, "session", i / per_folder);
        }
        const std::size_t spread = size / 4;
        write(folder / numbered("report-", i, ".html"),
              make_report(random, size - spread / 2 + random.below(spread)));
    }
}

void write_mixed(const fs::path& root)
{
    Random random(SEED);
    constexpr std::size_t SIZE = 60000;
    for (std::uint64_t i = 0; i < 5000; ++i) {
        const fs::path folder = make_folder(root, "mixed", i / 50);
        write(folder / numbered("report-", i, ".html"), make_report(random, SIZE));
        write(folder / numbered("page-", i, ".htm"), make_other_page(random, SIZE));
        for (std::uint64_t j = 0; j < 4; ++j) {
            write(folder / numbered("note-", i * 4 + j, ".txt"), "a note\n");
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    const std::string_view kind = argc > 2 ? argv[1] : "";
    if (kind == "small" && argc == 3) {
        write_reports(argv[2], 20000, 100, 12000);
    } else if (kind == "big" && argc == 3) {
        write_reports(argv[2], 400, 20, 2000000);
    } else if (kind == "mixed" && argc == 3) {
        write_mixed(argv[2]);
    } else if (kind == "huge" && argc == 3) {
        write_reports(argv[2], 6, 6, 40000000);
    } else if (kind == "tiny" && argc == 4) {
        write_reports(argv[3], std::strtoull(argv[2], nullptr, 10), 100, 2000);
    } else {
        std::fprintf(stderr, "usage: make_corpus small|big|mixed|huge FOLDER\n"
                             "       make_corpus tiny COUNT FOLDER\n");
        return 1;
    }
    return 0;
}
