// The folders that the runs under faults work in.
//
// World makes a tree of reports below "in" in a temporary folder, which becomes the
// current directory for as long as it lives: so every path is the same wherever temporary
// folders lie.

#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "report/report_entry.h"
#include "support/intercepted_calls.h"
#include "support/temp_folder.h"

enum class Scene
{
    NoOlderPage,    // beside a large tree; its folder is there
    OlderPage,      // inside the tree, with an older page and older JSON
    MissingFolders, // three folders above it are missing
    AllPassed,      // as NoOlderPage, with a few reports that do not fail the run
    NoJson,         // as AllPassed, without --json, beside older JSON
    Share,          // as OlderPage, on a file system whose listings are not believed, and
                    // which has to be waited for
    Terminal,       // as AllPassed, with a terminal for standard error
    ManyReports,    // as NoOlderPage, with a list of several megabytes
};
inline constexpr Scene SMALL_SCENES[] = {
    Scene::NoOlderPage, Scene::OlderPage, Scene::MissingFolders, Scene::AllPassed,
    Scene::NoJson,      Scene::Share,     Scene::Terminal};
const char* name_of(Scene scene);

inline constexpr char INPUT[] = "in";

class World
{
public:
    explicit World(Scene scene);
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    // Makes the outputs what they were before the first run.
    void reset() const;

    std::string page; // as typed
    bool wants_json = true;
    bool has_terminal = false;
    std::string json;                         // where it is, or would be
    std::map<std::string, ReportEntry> files; // as they are read; by their path below INPUT
    std::set<std::string> empty_files;        // those of files that hold no bytes
    std::set<std::string> page_names;         // those of files that are the older page
    std::vector<std::string> missing_folders; // outermost first
    std::optional<std::string> older_page;
    std::optional<std::string> older_json;

    // Everything in the temporary folder.
    std::vector<std::string> names() const;

private:
    void add(const std::string& path, const std::string& document);
    void add_link(const std::string& target, const std::string& path);
    void add_few();
    void add_many();
    void add_tree(int passed);
    void add_oddities();
    void add_older_outputs();
    void read_files();

    TempFolder temp_;
    std::filesystem::path before_;
    Interception<int, int, rusage*> usage_; // only a share brings anything in
    std::optional<Interception<int, int, struct statfs*>> listings_;
};
