#include "support/process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/temp_folder.h"

namespace {

constexpr unsigned TIME_LIMIT_SECONDS = 120;
constexpr uid_t ORDINARY_USER = 65534;

void become_ordinary_user()
{
    if (geteuid() != 0) {
        return;
    }
    if (setgroups(0, nullptr) != 0 || setgid(ORDINARY_USER) != 0 || setuid(ORDINARY_USER) != 0) {
        _exit(CHILD_SETUP_FAILED);
    }
}

[[noreturn]] void become_program(const std::string& program,
                                 const std::vector<std::string>& arguments,
                                 const ProcessOptions& options, int output, int errors)
{
    const int input = open("/dev/null", O_RDONLY);
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    for (const int descriptor : {input, output, errors}) {
        if (descriptor > STDERR_FILENO) {
            close(descriptor);
        }
    }
    if (!options.folder.empty() && chdir(options.folder.c_str()) != 0) {
        _exit(CHILD_SETUP_FAILED);
    }
    if (options.unprivileged) {
        become_ordinary_user();
    }
    for (const std::string& variable : options.environment) {
        const std::size_t equals = variable.find('=');
        setenv(variable.substr(0, equals).c_str(), variable.c_str() + equals + 1, 1);
    }
    std::vector<char*> words;
    words.push_back(const_cast<char*>(program.c_str()));
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    alarm(TIME_LIMIT_SECONDS);
    if (options.before_exec) {
        options.before_exec();
    }
    execv(program.c_str(), words.data());
    _exit(CHILD_SETUP_FAILED);
}

int status_of(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            return -1;
        }
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

// Empties both pipes side by side, so that neither can fill up and stop the child.
void collect(std::array<pollfd, 2> pipes, ProcessResult& result)
{
    const std::array<std::string*, 2> texts = {&result.output, &result.errors};
    std::array<char, 65536> bytes = {};
    int open_pipes = 2;
    while (open_pipes > 0 && poll(pipes.data(), pipes.size(), -1) > 0) {
        for (std::size_t i = 0; i < pipes.size(); ++i) {
            if (pipes[i].revents == 0) {
                continue;
            }
            const ssize_t count = read(pipes[i].fd, bytes.data(), bytes.size());
            if (count > 0) {
                texts[i]->append(bytes.data(), static_cast<std::size_t>(count));
            } else {
                close(pipes[i].fd);
                pipes[i].fd = -1;
                --open_pipes;
            }
        }
    }
}

// Nothing that body throws may reach GoogleTest, which would go on with the test
// program's other tests in the child.
int result_of(const std::function<int()>& body)
{
    try {
        return body();
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "in a child process: %s\n", exception.what());
    } catch (...) {
        std::fputs("in a child process: an exception of an unknown kind\n", stderr);
    }
    return BODY_THREW;
}

int run_in_child(const std::function<void()>& set_up, const std::function<int()>& body)
{
    const pid_t child = fork();
    if (child == 0) {
        set_up();
        _exit(result_of(body));
    }
    return child < 0 ? -1 : status_of(child);
}

std::string reachable_program()
{
    if (run_unprivileged([] { return access(FTHSUMMARY_PROGRAM, X_OK) == 0 ? 0 : 1; }) == 0) {
        return FTHSUMMARY_PROGRAM;
    }
    static const TempFolder folder;
    std::filesystem::copy_file(FTHSUMMARY_PROGRAM, folder.path("fthsummary"));
    folder.chmod("fthsummary", 0755);
    return folder.path("fthsummary");
}

} // namespace

ProcessResult run_process(const std::string& program, const std::vector<std::string>& arguments,
                          const ProcessOptions& options)
{
    ProcessResult result;
    std::array<int, 2> output = {};
    std::array<int, 2> errors = {};
    if (pipe2(output.data(), O_CLOEXEC) != 0 || pipe2(errors.data(), O_CLOEXEC) != 0) {
        ADD_FAILURE() << "cannot make pipes";
        return result;
    }
    const pid_t child = fork();
    if (child == 0) {
        become_program(program, arguments, options, output[1], errors[1]);
    }
    close(output[1]);
    close(errors[1]);
    if (child < 0) {
        ADD_FAILURE() << "cannot fork";
        return result;
    }
    collect({pollfd{output[0], POLLIN, 0}, pollfd{errors[0], POLLIN, 0}}, result);
    result.status = status_of(child);
    return result;
}

const std::string& fthsummary_program()
{
    static const std::string program = reachable_program();
    return program;
}

ProcessResult run_fthsummary(const std::vector<std::string>& arguments,
                             const ProcessOptions& options)
{
    return run_process(fthsummary_program(), arguments, options);
}

std::size_t open_descriptors(std::size_t limit)
{
    std::size_t count = 0;
    for (std::size_t descriptor = 0; descriptor < limit; ++descriptor) {
        count += fcntl(static_cast<int>(descriptor), F_GETFD) != -1 ? 1U : 0U;
    }
    return count;
}

int run_unprivileged(const std::function<int()>& body)
{
    return run_in_child(become_ordinary_user, body);
}

int run_with_root(const std::string& folder, const std::function<int()>& body)
{
    const auto enter = [&folder] {
        const bool may_change_root = geteuid() == 0 || unshare(CLONE_NEWUSER) == 0;
        if (!may_change_root || chroot(folder.c_str()) != 0 || chdir("/") != 0) {
            _exit(CHILD_SETUP_FAILED);
        }
    };
    return run_in_child(enter, body);
}
