#include "support/Process.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace zenka::test {

Process::Process(const std::vector<std::string>& command, const std::vector<std::string>& variables) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 1);

    std::vector<std::string> environment = variables;
    for (char** variable = environ; *variable; ++variable)
        environment.emplace_back(*variable); // the first of two equal names counts
    std::vector<char*> argv;
    std::vector<char*> envp;
    for (const std::string& word : command)
        argv.push_back(const_cast<char*>(word.c_str()));
    for (const std::string& variable : environment)
        envp.push_back(const_cast<char*>(variable.c_str()));
    argv.push_back(nullptr);
    envp.push_back(nullptr);
    const int fault = posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    pipe_ = ends[0];
    if (fault != 0)
        throw std::runtime_error("cannot start " + command[0]);
}

Process::~Process() {
    if (pid_ > 0) {
        ::kill(pid_, SIGKILL);
        wait();
    }
    ::close(pipe_);
}

bool Process::read(double seconds) {
    pollfd waiting{.fd = pipe_, .events = POLLIN, .revents = 0};
    if (poll(&waiting, 1, static_cast<int>(seconds * 1000)) <= 0)
        return true;
    char buffer[65536];
    const ssize_t count = ::read(pipe_, buffer, sizeof buffer);
    if (count > 0)
        output_.append(buffer, static_cast<std::size_t>(count));
    return count > 0 || (count < 0 && errno == EINTR);
}

int Process::finish() {
    while (read(10)) {
    }
    return wait();
}

void Process::kill(int signal) {
    ::kill(pid_, signal);
}

int Process::wait() {
    int status = 0;
    while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
    }
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace zenka::test
