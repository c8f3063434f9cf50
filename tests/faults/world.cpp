#include "faults/world.h"

#include <cstdlib>
#include <ostream>

#include <fcntl.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr char OLDER_PAGE[] = "<!doctype html>\n<title>An older page</title>\n";
constexpr char OLDER_JSON[] = "{ \"older\": true }\n";

std::string numbered(const std::string& stem, int number)
{
    const std::string digits = std::to_string(number);
    return stem + std::string(digits.size() < 3 ? 3 - digits.size() : 0, '0') + digits + ".html";
}

KnownFile passed(int number)
{
    KnownFile file = {Verdict::Pass, "Mode " + std::to_string(number % 3), "", {}, {}, ""};
    if (number % 4 == 0) {
        file.sub_mode = "Variant <" + std::to_string(number) + ">";
    }
    if (number % 5 == 0) {
        file.non_gating_checks = {"Dither", "Hum & noise"};
    }
    return file;
}

KnownFile failed(int number)
{
    KnownFile file = {Verdict::Fail, "", "", {"Noise " + std::to_string(number), "Phase"}, {}, ""};
    if (number % 2 == 0) {
        file.non_gating_checks = {"Dither"};
    }
    return file;
}

KnownFile errored(int number)
{
    return {Verdict::Error,
            "",
            "",
            {},
            {},
            number % 3 == 0 ? "" : "cannot open \"take " + std::to_string(number) + "\" & <stop>"};
}

KnownFile other()
{
    return {Verdict::Other, "", "", {}, {}, ""};
}

// Each of the many tests makes a tree, each of its many runs two files.
fs::path quick_parent()
{
    constexpr char IN_MEMORY[] = "/dev/shm";
    return access(IN_MEMORY, W_OK | X_OK) == 0 ? fs::path(IN_MEMORY) : fs::temp_directory_path();
}

// Without streams, for it is done before each of many thousand runs.
void write_bytes(const std::string& path, const std::string& bytes)
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0 || write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()) ||
        close(file) != 0) {
        std::abort();
    }
}

void restore(const std::string& path, const std::optional<std::string>& bytes)
{
    if (bytes) {
        write_bytes(path, *bytes);
    } else {
        unlink(path.c_str());
    }
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
    link_prefix = "../in/";
    temp_.make_folder("out");
    if (scene == Scene::OlderPage) {
        page = "in/latest/summary.html";
        link_prefix = "../";
        add_older_outputs();
    } else if (scene == Scene::MissingFolders) {
        page = "new/below/it/summary.html";
        link_prefix = "../../../in/";
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
}

World::~World()
{
    std::error_code ignored;
    fs::current_path(before_, ignored);
}

void World::add(const std::string& path, const KnownFile& file)
{
    temp_.write("in/" + path, document_of(file));
    files[path] = file;
}

void World::add_few()
{
    for (int i = 0; i < 12; ++i) {
        add(numbered(i < 6 ? "passed" : "album/passed", i), passed(i));
    }
    add("notes.html", other());
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
        add(numbered(i < 3 ? "notes" : "a/notes", i), other());
    }
}

void World::add_oddities()
{
    add("say \"x\" & 'y'.html", failed(1));
    temp_.write("in/a/b/plain.txt", "not listed");
    temp_.make_folder("in/empty");
    temp_.link("nowhere.html", "in/dangling.html");
    temp_.link("album/passed060.html", "in/again.html");
    files["again.html"] = passed(60);
    temp_.link("../a/b", "in/album/elsewhere");
    for (int i = 6; i < 12; ++i) {
        files[numbered("album/elsewhere/c/failed", i)] = failed(i);
    }
}

void World::add_older_outputs()
{
    older_page = OLDER_PAGE;
    older_json = OLDER_JSON;
    temp_.make_folder("in/latest");
    temp_.link("latest/summary.html", "in/alias.html");
    page_names = {"latest/summary.html", "alias.html"};
    for (const std::string& name : page_names) {
        files[name] = other();
    }
}

void World::reset() const
{
    restore(page, older_page);
    restore(json, older_json);
    for (auto folder = missing_folders.rbegin(); folder != missing_folders.rend(); ++folder) {
        rmdir(folder->c_str());
    }
}

std::vector<std::string> World::names() const
{
    return temp_.names();
}
