#include "support/RealChildren.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace zenka::test {

namespace {

using Clock = std::chrono::steady_clock;

Clock::time_point in(base::Seconds limit) {
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(limit);
}

int millisecondsTo(Clock::time_point end) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

class RealChild final : public ports::ChildProcess {
public:
    RealChild(pid_t id, int input, int output, int errors)
        : id_(id), input_(input), output_(output), errors_(errors) {
        for (const int end : {input_, output_, errors_})
            if (end >= 0)
                ::fcntl(end, F_SETFL, O_NONBLOCK);
    }

    ~RealChild() override {
        kill();
        waitForEnd(base::Seconds{5});
        for (const int end : {input_, output_, errors_})
            if (end >= 0)
                ::close(end);
    }

    bool write(std::string_view bytes, base::Seconds limit) override {
        const auto end = in(limit);
        while (!bytes.empty()) {
            const ssize_t wrote = ::write(input_, bytes.data(), bytes.size());
            if (wrote > 0) {
                bytes.remove_prefix(static_cast<std::size_t>(wrote));
                continue;
            }
            pollfd waiting{.fd = input_, .events = POLLOUT, .revents = 0};
            if (errno != EAGAIN || ::poll(&waiting, 1, millisecondsTo(end)) != 1)
                return false;
        }
        return true;
    }

    Output read(base::Seconds limit) override {
        std::array<pollfd, 2> ends{pollfd{.fd = output_, .events = POLLIN, .revents = 0},
                                   pollfd{.fd = errors_, .events = POLLIN, .revents = 0}};
        ::poll(ends.data(), ends.size(), millisecondsTo(in(limit)));
        Output output;
        drain(output_, output.out);
        drain(errors_, output.err);
        output.ended = output_ < 0 && errors_ < 0;
        return output;
    }

    bool running() override { return !waitForEnd(base::Seconds{0}); }

    std::optional<int> waitForEnd(base::Seconds limit) override {
        const auto end = in(limit);
        for (;;) {
            {
                const std::lock_guard lock(mutex_);
                int status = 0;
                if (!code_ && ::waitpid(id_, &status, WNOHANG) == id_)
                    code_ = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
                if (code_)
                    return code_;
            }
            if (Clock::now() >= end)
                return std::nullopt;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }

    void terminate() override { ::kill(-id_, SIGTERM); }
    void kill() override { ::kill(-id_, SIGKILL); }

private:
    static void drain(int& end, std::string& text) {
        std::array<char, 65536> piece{};
        while (end >= 0) {
            const ssize_t got = ::read(end, piece.data(), piece.size());
            if (got > 0) {
                text.append(piece.data(), static_cast<std::size_t>(got));
                if (text.size() > (std::size_t{1} << 20))
                    return;
                continue;
            }
            if (got < 0 && errno == EAGAIN)
                return;
            ::close(end);
            end = -1;
        }
    }

    pid_t id_;
    int input_;
    int output_;
    int errors_;
    std::mutex mutex_;
    std::optional<int> code_;
};

std::vector<char*> pointersTo(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

ports::ChildProcesses::Started RealChildren::start(const ports::ChildStart& start) {
    ::signal(SIGPIPE, SIG_IGN); // as the program does
    std::array<int, 2> input{-1, -1};
    std::array<int, 2> output{-1, -1};
    std::array<int, 2> errors{-1, -1};
    if (::pipe2(input.data(), O_CLOEXEC) != 0 || ::pipe2(output.data(), O_CLOEXEC) != 0 ||
        (!start.mergeErrors && ::pipe2(errors.data(), O_CLOEXEC) != 0))
        return {.fault = std::strerror(errno)};
    std::vector<std::string> words{start.program};
    words.insert(words.end(), start.arguments.begin(), start.arguments.end());
    std::vector<std::string> entries;
    for (const auto& [name, value] : start.environment)
        entries.push_back(name + "=" + value);
    for (char** entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        if (!start.environment.contains(text.substr(0, text.find('='))))
            entries.push_back(text);
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, start.mergeErrors ? output[1] : errors[1], STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    pid_t id = 0;
    const int fault = posix_spawnp(&id, start.program.c_str(), &actions, &attributes,
                                   pointersTo(words).data(), pointersTo(entries).data());
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    for (const int end : {input[0], output[1], errors[1]})
        if (end >= 0)
            ::close(end);
    if (fault == 0)
        return {.child = std::make_unique<RealChild>(id, input[1], output[0], errors[0])};
    for (const int end : {input[1], output[0], errors[0]})
        if (end >= 0)
            ::close(end);
    return {.fault = std::strerror(fault)};
}

bool RealChildren::none() {
    return ::waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD;
}

} // namespace zenka::test
