// Writes made-up, mostly damaged reports as files, the same at every time.
//
//   make_documents COUNT FOLDER

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "report/document_generator.h"

namespace {

constexpr std::uint64_t SEED = 20260102;

bool write(const std::string& path, const std::string& bytes)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        return false;
    }
    const bool complete = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && complete;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fputs("usage: make_documents COUNT FOLDER\n", stderr);
        return 1;
    }
    Random random(SEED);
    const std::uint64_t count = std::strtoull(argv[1], nullptr, 10);
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::string path = std::string(argv[2]) + "/" + std::to_string(i) + ".html";
        if (!write(path, generate_document(random))) {
            std::fprintf(stderr, "make_documents: cannot write %s\n", path.c_str());
            return 1;
        }
    }
    return 0;
}
