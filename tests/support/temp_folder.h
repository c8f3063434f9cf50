// A temporary folder that is removed again with everything in it, and the file
// system steps that tests take inside it.

#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// A fresh folder for the length of one test; its path is canonical. Names are given
// relative to it. Other users may read what the test makes, whatever umask it
// was started with: making a folder sets 022.
class TempFolder
{
public:
    TempFolder(); // where temporary files belong
    explicit TempFolder(const std::filesystem::path& parent);
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // The folder's absolute path, or the absolute path of name inside it.
    std::string path() const;
    std::string path(std::string_view name) const;

    // Each makes the missing folders above name. The test fails if it cannot.
    void write(std::string_view name, std::string_view bytes) const;
    void make_folder(std::string_view name) const;
    void link(std::string_view target, std::string_view name) const; // symbolic
    void make_fifo(std::string_view name) const;
    void make_socket(std::string_view name) const; // however long the folder's own path is
    void chmod(std::string_view name, unsigned mode) const;

    std::string read(std::string_view name) const; // the test fails if it cannot
    bool exists(std::string_view name) const;      // a dangling link does not
    std::vector<std::string> names() const;        // everything below, sorted, relative

private:
    std::filesystem::path folder_;
};

// Where files are made in memory, on machines that have such a place: for large trees,
// and for what is made anew many thousand times.
std::filesystem::path folder_in_memory();

// Whole file by absolute path; the test fails if it cannot be read.
std::string read_file(const std::string& path);
