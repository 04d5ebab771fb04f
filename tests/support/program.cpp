// SPDX-License-Identifier: MIT
#include "tests/support/program.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "tests/support/child.h"
#include "tests/support/temporary_folder.h"

namespace quillet::test {

namespace fs = std::filesystem;

namespace {

/// The status of a shell that cannot start a program.
constexpr int notStarted = 127;

void redirect(int descriptor, const fs::path& file, int flags) {
    const int opened = open(file.c_str(), flags, 0644);
    if (opened < 0 || dup2(opened, descriptor) < 0) _exit(notStarted);
    close(opened);
}

/// In the new process, between fork and exec.
[[noreturn]] void become(const fs::path& program, const Start& how) {
    takeSignals();
    redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
    redirect(STDOUT_FILENO, how.output, O_WRONLY | O_CREAT | O_TRUNC);
    redirect(STDERR_FILENO, how.errors, O_WRONLY | O_CREAT | O_TRUNC);
    if (how.closed) close(*how.closed);
    for (const std::string& name : how.unset) unsetenv(name.c_str());
    for (const std::string& setting : how.environment) {
        const std::size_t sign = setting.find('=');
        setenv(setting.substr(0, sign).c_str(), setting.substr(sign + 1).c_str(), 1);
    }
    if (!how.folder.empty() && chdir(how.folder.c_str()) != 0) _exit(notStarted);
    std::string name = program.filename();
    std::vector<char*> arguments = {name.data()};
    for (const std::string& word : how.words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    if (how.isTraced) ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    execv(program.c_str(), arguments.data());
    _exit(notStarted);
}

}  // namespace

void takeSignals() {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    for (const int signal : {SIGHUP, SIGINT, SIGPIPE, SIGTERM, SIGXFSZ}) {
        ::signal(signal, SIG_DFL);
    }
}

pid_t start(const fs::path& program, const Start& how) {
    const pid_t process = fork();
    if (process < 0) throw std::runtime_error("no second process");
    if (process == 0) become(program, how);
    return process;
}

int waitFor(pid_t process) {
    int report = 0;
    if (waitpid(process, &report, 0) != process) throw std::runtime_error("nobody to wait for");
    return statusOf(report);
}

Outcome runInShell(const std::string& line, const fs::path& folder) {
    const TemporaryFolder streams;
    const fs::path output = streams.path() / "output";
    const fs::path errors = streams.path() / "errors";
    const int status = waitFor(start(
        "/bin/sh", {.words = {"-c", line}, .output = output, .errors = errors, .folder = folder}));
    return {status, readText(output), readText(errors)};
}

std::string readText(const fs::path& file) {
    std::ostringstream text;
    text << std::ifstream{file, std::ios::binary}.rdbuf();
    return text.str();
}

void writeText(const fs::path& file, const std::string& text) {
    std::ofstream{file, std::ios::binary} << text;
}

bool becomesTrue(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds{20};
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds{5});
    }
    return true;
}

Words linesOf(const std::string& text) {
    Words lines;
    std::istringstream rest{text};
    for (std::string line; std::getline(rest, line);) lines.push_back(line);
    return lines;
}

}  // namespace quillet::test
