#include "faults/program_run.h"

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

// The program's main, which goes by this name here.
int program_main(int argc, char** argv);

// AddressSanitizer's settings, where it is there: what one run gives back is kept from
// being used again, not what a hundred did.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "quarantine_size_mb=4:malloc_context_size=8";
}
extern "C" __attribute__((weak)) void __sanitizer_set_report_fd(void* file);
// NOLINTEND(bugprone-reserved-identifier)

namespace {

int replace_stream(int stream, int file)
{
    const int real = dup(stream);
    if (file < 0 || real < 0 || dup2(file, stream) < 0) {
        std::abort();
    }
    return real;
}

// A report must not go where what the program prints goes.
void send_reports_to(std::intptr_t file)
{
    if (__sanitizer_set_report_fd != nullptr) {
        __sanitizer_set_report_fd(reinterpret_cast<void*>(file));
    }
}

void put_back(int stream, int real, int file)
{
    dup2(real, stream);
    close(real);
    close(file);
}

std::string bytes_of(int file)
{
    struct stat status = {};
    if (fstat(file, &status) != 0) {
        std::abort();
    }
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    if (pread(file, bytes.data(), bytes.size(), 0) != status.st_size) {
        std::abort();
    }
    return bytes;
}

std::optional<std::string> file_bytes(const std::string& path)
{
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return std::nullopt;
    }
    std::string bytes = bytes_of(file);
    close(file);
    return bytes;
}

int lowest_free_descriptor()
{
    const int file = dup(STDOUT_FILENO);
    close(file);
    return file;
}

// Puts back at its end what a signal did before, for main sets what it does.
class KeptSignal
{
public:
    explicit KeptSignal(int number) : number_(number), before_(std::signal(number, SIG_DFL)) {}

    ~KeptSignal()
    {
        std::signal(number_, before_);
    }

    KeptSignal(const KeptSignal&) = delete;
    KeptSignal& operator=(const KeptSignal&) = delete;

private:
    int number_;
    void (*before_)(int);
};

int run_main(const World& world, WatchedRun& watched)
{
    const KeptSignal closed_pipe(SIGPIPE);
    const KeptSignal file_too_large(SIGXFSZ);
    std::vector<std::string> words = {"fthsummary", "--input", INPUT, "-o", world.page};
    if (world.wants_json) {
        words.emplace_back("--json");
    }
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    watched.start();
    const int status = program_main(static_cast<int>(words.size()), arguments.data());
    watched.stop();
    return status;
}

} // namespace

PrintedText::PrintedText()
    : output_(memfd_create("output", MFD_CLOEXEC)), errors_(memfd_create("errors", MFD_CLOEXEC))
{
    std::fflush(stdout);
    real_output_ = replace_stream(STDOUT_FILENO, output_);
    real_errors_ = replace_stream(STDERR_FILENO, errors_);
    send_reports_to(real_errors_);
}

PrintedText::~PrintedText()
{
    std::fflush(stdout);
    send_reports_to(STDERR_FILENO);
    put_back(STDOUT_FILENO, real_output_, output_);
    put_back(STDERR_FILENO, real_errors_, errors_);
}

std::string PrintedText::output()
{
    std::fflush(stdout);
    return bytes_of(output_);
}

std::string PrintedText::errors()
{
    return bytes_of(errors_);
}

Outcome run_program(const World& world, WatchedRun& watched)
{
    PrintedText printed;
    Outcome outcome;
    const int free_before = lowest_free_descriptor();
    outcome.status = run_main(world, watched);
    const int free_after = lowest_free_descriptor();
    outcome.output = printed.output();
    outcome.errors = printed.errors();
    if (free_after != free_before) {
        outcome.errors += "(a descriptor is left open)\n";
    }
    outcome.page = file_bytes(world.page);
    outcome.json = file_bytes(world.json);
    for (const std::string& folder : world.missing_folders) {
        struct stat status = {};
        if (stat(folder.c_str(), &status) == 0) {
            outcome.folders.push_back(folder);
        }
    }
    return outcome;
}
