#include "faults/world.h"

#include <cstdlib>
#include <ostream>

#include <fcntl.h>
#include <unistd.h>

#include "cli/sample_reports.h"
#include "report/read_analyze_report.h"

namespace fs = std::filesystem;

namespace {

constexpr char OLDER_PAGE[] = "<!doctype html>\n<title>An older page</title>\n";
constexpr char OLDER_JSON[] = "{ \"older\": true }\n";

std::string numbered(const std::string& stem, int number)
{
    const std::string digits = std::to_string(number);
    return stem + std::string(digits.size() < 3 ? 3 - digits.size() : 0, '0') + digits + ".html";
}

std::string tab(const std::string& name, const std::string& marks)
{
    return "<a href=\"#check\"" + marks + ">" + name + "</a>\n";
}

std::string passed(int number)
{
    std::string text = passed_report() +
                       "<div class=\"k\">Analysis Mode</div>\n<div class=\"v\">Mode " +
                       std::to_string(number % 3) + "</div>\n";
    if (number % 4 == 0) {
        text += "<div class=\"kpi-sub\">Variant &lt;" + std::to_string(number) + "&gt;</div>\n";
    }
    const bool has_non_gating = number % 5 == 0;
    return text + "<nav class=\"nav-tabs\">\n" + tab("Level", "") +
           (has_non_gating ? tab("Hum &amp; noise", " data-fail data-nongating") : "") + "</nav>\n";
}

std::string failed(int number)
{
    const bool has_non_gating = number % 2 == 0;
    return failed_report() + "<nav class=\"nav-tabs\">\n" +
           tab("Noise " + std::to_string(number), " data-fail") + tab("Phase", " data-fail") +
           (has_non_gating ? tab("Dither", " data-fail data-nongating") : "") + "</nav>\n";
}

std::string errored(int number)
{
    return errored_report(number % 3 == 0 ? ""
                                          : "cannot open \"take " + std::to_string(number) +
                                                "\" &amp; &lt;stop&gt;");
}

// Each of the many tests makes a tree, each of its many runs two files.
fs::path quick_parent()
{
    constexpr char IN_MEMORY[] = "/dev/shm";
    return access(IN_MEMORY, W_OK | X_OK) == 0 ? fs::path(IN_MEMORY) : fs::temp_directory_path();
}

} // namespace

const char* name_of(Scene scene)
{
    switch (scene) {
    case Scene::NoOlderPage:
        return "NoOlderPage";
    case Scene::OlderPage:
        return "OlderPage";
    case Scene::MissingFolders:
        return "MissingFolders";
    case Scene::AllPassed:
        return "AllPassed";
    case Scene::NoJson:
        return "NoJson";
    default:
        return "ManyReports";
    }
}

void PrintTo(Scene scene, std::ostream* output)
{
    *output << name_of(scene);
}

World::World(Scene scene) : temp_(quick_parent()), before_(fs::current_path())
{
    fs::current_path(temp_.path());
    page = "out/summary.html";
    temp_.make_folder("out");
    if (scene == Scene::OlderPage) {
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
    } else if (scene == Scene::AllPassed || scene == Scene::NoJson) {
        add_few();
    } else {
        add_tree();
        add_oddities();
    }
    reset();
    read_files();
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
        add(numbered(i < 6 ? "passed" : "album/passed", i), passed(i));
    }
    add("notes.html", "");
}

void World::add_many()
{
    for (int i = 0; i < 2200; ++i) {
        add(numbered("many/", i), passed(i));
    }
}

// 104 passed, so that the loss of a few makes the table one that is not paged.
void World::add_tree()
{
    for (int i = 0; i < 104; ++i) {
        add(numbered(i < 60 ? "passed" : i < 90 ? "album/passed" : "album/disc 1/p", i), passed(i));
    }
    for (int i = 0; i < 12; ++i) {
        add(numbered(i < 6 ? "failed" : "a/b/c/failed", i), failed(i));
        add(numbered(i < 6 ? "errored" : ".hidden/errored", i), errored(i));
    }
    for (int i = 0; i < 6; ++i) {
        add(numbered(i < 3 ? "notes" : "a/notes", i), "");
    }
}

void World::add_oddities()
{
    add("say \"x\" & 'y'.html", failed(1));
    temp_.write("in/a/b/plain.txt", "not listed");
    temp_.make_folder("in/empty");
    temp_.link("nowhere.html", "in/dangling.html");
    add_link("album/passed060.html", "again.html");
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
