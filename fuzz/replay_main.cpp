// Runs a target over every file of the folders that are named, without libFuzzer.
// Ends with status 1 when there is none, so that a lost corpus is noticed.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "support/target.h"

namespace {

using Bytes = std::vector<char>;

std::vector<std::filesystem::path> files_in(const char* folder)
{
    std::vector<std::filesystem::path> files;
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        if (file.is_regular_file()) {
            files.push_back(file.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

// In a block of the input's exact size, so that AddressSanitizer sees its end.
void run_target(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    const Bytes read(std::istreambuf_iterator<char>(stream), {});
    const std::vector<std::uint8_t> bytes(read.begin(), read.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

} // namespace

int main(int argc, char** argv)
{
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const std::filesystem::path& file : files_in(argv[i])) {
            // Stands last in the output when the target ends the program.
            std::printf("%s\n", file.c_str());
            std::fflush(stdout);
            run_target(file);
            ++count;
        }
    }
    std::printf("%zu inputs\n", count);
    if (count == 0) {
        std::fputs("error: there is no input to replay\n", stderr);
        return 1;
    }
    return 0;
}
