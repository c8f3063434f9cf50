#include "faults/world.h"

#include <array>
#include <utility>

#include <linux/magic.h>

#include "cli/sample_reports.h"
#include "report/read_analyze_report.h"

namespace fs = std::filesystem;

namespace {

constexpr char OLDER_PAGE[] = "<!doctype html>\n<title>An older page</title>\n";
constexpr char OLDER_JSON[] = "{ \"older\": true }\n";

// So many reports that the table is paged, and that the loss of a few makes it one that is
// not.
constexpr int PAGED = 104;

std::string numbered(const std::string& stem, int number)
{
    const std::string digits = std::to_string(number);
    return stem + std::string(digits.size() < 3 ? 3 - digits.size() : 0, '0') + digits + ".html";
}

std::string errored()
{
    return errored_report("cannot open \"take 1\" &amp; &lt;stop&gt;");
}

} // namespace

const char* name_of(Scene scene)
{
    static constexpr std::array<const char*, 8> NAMES = {
        "NoOlderPage", "OlderPage", "MissingFolders", "AllPassed",
        "NoJson",      "Share",     "Terminal",       "ManyReports"};
    return NAMES[static_cast<std::size_t>(scene)];
}

World::World(Scene scene)
    : has_terminal(scene == Scene::Terminal), temp_(folder_in_memory()),
      before_(fs::current_path()), usage_(getrusage_call, [scene](const auto&, int, rusage* usage) {
          *usage = {};
          usage->ru_inblock =
              scene == Scene::Share ? static_cast<long>(1000 * getrusage_call.made) : 0;
          return 0;
      })
{
    fs::current_path(temp_.path());
    page = "out/summary.html";
    temp_.make_folder("out");
    if (scene == Scene::OlderPage || scene == Scene::Share) {
        page = "in/latest/summary.html";
        add_older_outputs();
    } else if (scene == Scene::MissingFolders) {
        page = "new/below/it/summary.html";
        missing_folders = {"new", "new/below", "new/below/it"};
    } else if (scene == Scene::NoJson) {
        wants_json = false;
        older_json = OLDER_JSON;
    }
    json = page.substr(0, page.size() - 5) + ".json";
    if (scene == Scene::ManyReports) {
        add_many();
    } else if (scene == Scene::AllPassed || scene == Scene::NoJson || scene == Scene::Terminal) {
        add_few();
    } else {
        add_tree(scene == Scene::NoOlderPage ? PAGED : 8);
        add_oddities();
    }
    reset();
    read_files();
    if (scene == Scene::Share) {
        listings_.emplace(fstatfs_call, [](const auto&, int, struct statfs* status) {
            status->f_type = FUSE_SUPER_MAGIC;
            return 0;
        });
    }
}

World::~World()
{
    std::error_code ignored;
    fs::current_path(before_, ignored);
}

void World::add(const std::string& path, const std::string& document)
{
    temp_.write("in/" + path, document);
    files[path];
    if (document.empty()) {
        empty_files.insert(path);
    }
}

void World::add_link(const std::string& target, const std::string& path)
{
    temp_.link(target, "in/" + path);
    files[path];
}

void World::add_few()
{
    for (int i = 0; i < 12; ++i) {
        add(numbered(i < 6 ? "passed" : "album/passed", i), passed_report());
    }
    add("notes.html", "");
}

void World::add_many()
{
    for (int i = 0; i < 2200; ++i) {
        add(numbered("many/", i), passed_report());
    }
}

void World::add_tree(int passed)
{
    for (int i = 0; i < passed; ++i) {
        add(numbered(i < 60   ? "passed"
                     : i < 90 ? "album/passed"
                              : "album/disc 1/p",
                     i),
            passed_report());
    }
    for (int i = 0; i < 12; ++i) {
        add(numbered(i < 6 ? "failed" : "a/b/c/failed", i), std::string(FULL_FAILED_REPORT));
        add(numbered(i < 6 ? "errored" : ".hidden/errored", i), errored());
    }
    for (int i = 0; i < 6; ++i) {
        add(numbered(i < 3 ? "notes" : "a/notes", i), "");
    }
}

void World::add_oddities()
{
    add("say \"x\" & 'y'.html", std::string(FULL_FAILED_REPORT));
    temp_.write("in/a/b/plain.txt", "not listed");
    temp_.make_folder("in/empty");
    temp_.link("nowhere.html", "in/dangling.html");
    add_link("passed000.html", "again.html");
    temp_.link("../a/b", "in/album/elsewhere");
    for (int i = 6; i < 12; ++i) {
        files[numbered("album/elsewhere/c/failed", i)];
    }
}

void World::add_older_outputs()
{
    older_page = OLDER_PAGE;
    older_json = OLDER_JSON;
    add("latest/summary.html", OLDER_PAGE);
    add_link("latest/summary.html", "alias.html");
    page_names = {"latest/summary.html", "alias.html"};
}

void World::read_files()
{
    for (auto& [path, entry] : files) {
        read_analyze_report((std::string(INPUT) + "/" + path).c_str(), path.c_str(), entry);
    }
}

void World::reset() const
{
    for (const auto& [path, bytes] : {std::pair(page, older_page), std::pair(json, older_json)}) {
        if (bytes) {
            temp_.write(path, *bytes);
        } else {
            fs::remove(path);
        }
    }
    for (auto folder = missing_folders.rbegin(); folder != missing_folders.rend(); ++folder) {
        fs::remove(*folder);
    }
}

std::vector<std::string> World::names() const
{
    return temp_.names();
}
