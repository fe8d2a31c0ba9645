#include "support/Child.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace zenka::test {

namespace {

std::vector<char*> pointersTo(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

Child::Child(std::vector<std::string> words, const std::vector<std::string>& environment) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    output_ = ends[0];
    // Of two entries of one name some programs take the first and some the last.
    std::vector<std::string> entries = environment;
    for (char** entry = environ; *entry; ++entry) {
        const std::string_view inherited(*entry);
        const auto name = inherited.substr(0, inherited.find('=') + 1);
        if (std::ranges::none_of(environment, [&](const std::string& own) { return own.starts_with(name); }))
            entries.emplace_back(inherited);
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    const int fault = posix_spawnp(&id_, words.front().c_str(), &actions, nullptr, pointersTo(words).data(),
                                   pointersTo(entries).data());
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    if (fault != 0)
        throw std::runtime_error("cannot start " + words.front());
}

Child::~Child() {
    kill();
    ::close(output_);
}

std::string Child::readLine() {
    std::string line;
    char letter = 0;
    while (::read(output_, &letter, 1) == 1 && letter != '\n')
        line += letter;
    return line;
}

std::string Child::readRest() {
    std::string rest;
    std::array<char, 4096> piece{};
    for (ssize_t got = 0; (got = ::read(output_, piece.data(), piece.size())) > 0;)
        rest.append(piece.data(), static_cast<std::size_t>(got));
    return rest;
}

std::string Child::readWithin(std::chrono::milliseconds limit) {
    pollfd waiting{.fd = output_, .events = POLLIN, .revents = 0};
    std::array<char, 65536> piece{};
    if (::poll(&waiting, 1, static_cast<int>(limit.count())) != 1)
        return {};
    const ssize_t got = ::read(output_, piece.data(), piece.size());
    return got > 0 ? std::string(piece.data(), static_cast<std::size_t>(got)) : std::string();
}

void Child::kill() {
    if (reaped_)
        return;
    ::kill(id_, SIGKILL);
    wait();
}

int Child::wait() {
    int status = 0;
    ::waitpid(id_, &status, 0);
    reaped_ = true;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool childless() {
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) < 0 && errno == ECHILD;
}

} // namespace zenka::test
