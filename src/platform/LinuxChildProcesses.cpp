#include "platform/LinuxChildProcesses.h"

#include "platform/Nanoseconds.h"
#include "platform/ProcessHandle.h"
#include "platform/Spawn.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>

namespace zenka::platform {

namespace {

/// What is kept of an output while the child is waited for and nobody reads; beyond it the child waits.
constexpr std::size_t keptBytes = 64U << 20;
constexpr std::size_t bytesAtOnce = 1U << 20;

/// A killed process goes at once, but for one that sits in a driver.
constexpr base::Seconds goneLimit{2};

class Deadline {
public:
    explicit Deadline(base::Seconds limit)
        : instant_(readClock(CLOCK_MONOTONIC) + nanosecondsOf(limit.count())) {}

    timespec left() const {
        return timespecOf(std::max<Nanoseconds>(0, instant_ - readClock(CLOCK_MONOTONIC)));
    }

private:
    Nanoseconds instant_;
};

/// Keeps the signal that a write to a closed pipe raises from this thread, so that a program which does
/// not ignore it lives on.
class BrokenPipeGuard {
public:
    BrokenPipeGuard() {
        sigemptyset(&set_);
        sigaddset(&set_, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &set_, &before_);
    }
    BrokenPipeGuard(const BrokenPipeGuard&) = delete;
    BrokenPipeGuard& operator=(const BrokenPipeGuard&) = delete;
    ~BrokenPipeGuard() {
        const timespec atOnce{};
        while (!wasPending_ && sigtimedwait(&set_, nullptr, &atOnce) < 0 && errno == EINTR) {
        }
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

private:
    sigset_t set_;
    sigset_t before_;
    bool wasPending_ = false;
};

struct Pipe {
    Descriptor reading;
    Descriptor writing;

    /// False with errno set.
    bool open() {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            return false;
        reading = Descriptor(ends[0]);
        writing = Descriptor(ends[1]);
        return lift(reading) && lift(writing);
    }

private:
    /// Where this process has closed its own standard streams, a pipe could get their numbers, and one of
    /// the child's would be closed in making another.
    static bool lift(Descriptor& end) {
        if (end.get() <= STDERR_FILENO)
            end = Descriptor(::fcntl(end.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
        return static_cast<bool>(end);
    }
};

/// One of the child's outputs: the end of its pipe, until that is at its end, and what came from it.
class OutputPipe {
public:
    void take(Descriptor end) {
        ::fcntl(end.get(), F_SETFL, O_NONBLOCK);
        end_ = std::move(end);
    }
    bool atEnd() const { return !end_; }
    bool wanted() const { return end_ && kept_.size() < keptBytes; }
    bool empty() const { return kept_.empty(); }
    int descriptor() const { return end_.get(); }
    std::string handOut() { return std::exchange(kept_, {}); }

    /// Takes what there is, without waiting.
    void fill() {
        std::array<char, 65536> piece{};
        for (std::size_t taken = 0; wanted() && taken < bytesAtOnce;) {
            const ssize_t got = ::read(end_.get(), piece.data(), piece.size());
            if (got > 0) {
                kept_.append(piece.data(), static_cast<std::size_t>(got));
                taken += static_cast<std::size_t>(got);
            } else if (got == 0 || (errno != EINTR && errno != EAGAIN)) {
                end_.close();
            } else if (errno == EAGAIN) {
                return;
            }
        }
    }

private:
    Descriptor end_;
    std::string kept_;
};

class LinuxChildProcess final : public ports::ChildProcess {
public:
    LinuxChildProcess(pid_t id, Descriptor process, Descriptor input, Descriptor output, Descriptor errors)
        : id_(id), process_(std::move(process)), input_(std::move(input)) {
        ::fcntl(input_.get(), F_SETFL, O_NONBLOCK);
        output_.take(std::move(output));
        if (errors)
            errors_.take(std::move(errors));
    }

    ~LinuxChildProcess() override {
        kill();
        waitForEnd(goneLimit);
        if (!running()) {
            reap(id_);
            return;
        }
        try {
            std::thread(reap, id_).detach();
        } catch (const std::system_error&) {
            // a machine out of threads: the zombie stays until this process ends
        }
    }

    bool write(std::string_view bytes, base::Seconds limit) override {
        const Deadline deadline(limit);
        const BrokenPipeGuard guard;
        while (running()) {
            if (bytes.empty())
                return true;
            const ssize_t written = ::write(input_.get(), bytes.data(), bytes.size());
            if (written > 0) {
                bytes.remove_prefix(static_cast<std::size_t>(written));
                if (bytes.empty())
                    return true; // also for a child that ends on these very bytes
            } else if ((errno != EAGAIN && errno != EINTR) || !await(input_.get(), POLLOUT, deadline)) {
                return false;
            }
        }
        return false;
    }

    Output read(base::Seconds limit) override {
        const Deadline deadline(limit);
        for (;;) {
            output_.fill();
            errors_.fill();
            const bool ended = output_.atEnd() && errors_.atEnd();
            if (ended || !output_.empty() || !errors_.empty() || !await(-1, 0, deadline))
                return {.out = output_.handOut(), .err = errors_.handOut(), .ended = ended};
        }
    }

    bool running() override {
        if (code_)
            return false;
        siginfo_t info{};
        if (::waitid(P_PID, static_cast<id_t>(id_), &info, WEXITED | WNOHANG | WNOWAIT) != 0) {
            if (errno != EINTR)
                code_ = 255; // someone else's wait took its end away
        } else if (info.si_pid != 0) {
            code_ = info.si_code == CLD_EXITED ? info.si_status : -info.si_status;
        }
        return !code_;
    }

    std::optional<int> waitForEnd(base::Seconds limit) override {
        const Deadline deadline(limit);
        while (running() && await(process_.get(), POLLIN, deadline)) {
        }
        running();
        return code_;
    }

    void terminate() override {
        ::kill(-id_, SIGTERM);
        ::kill(-id_, SIGCONT); // a stopped process would not hear of it
    }

    void kill() override { ::kill(-id_, SIGKILL); }

private:
    static void reap(pid_t id) {
        while (::waitpid(id, nullptr, 0) < 0 && errno == EINTR) {
        }
    }

    /// Waits for an event of a descriptor (-1: none), and for any output, which it takes, so that a child
    /// never stands still because nobody reads while it is waited for. False at the deadline.
    bool await(int descriptor, short events, const Deadline& deadline) {
        std::array<pollfd, 3> waited{{{descriptor, events, 0},
                                      {output_.wanted() ? output_.descriptor() : -1, POLLIN, 0},
                                      {errors_.wanted() ? errors_.descriptor() : -1, POLLIN, 0}}};
        const timespec left = deadline.left();
        const int ready = ::ppoll(waited.data(), waited.size(), &left, nullptr);
        if (ready <= 0)
            return ready < 0 && errno == EINTR;
        if (waited[1].revents != 0)
            output_.fill();
        if (waited[2].revents != 0)
            errors_.fill();
        return true;
    }

    const pid_t id_;
    const Descriptor process_;
    const Descriptor input_;
    OutputPipe output_;
    OutputPipe errors_;
    std::optional<int> code_;
};

ports::ChildProcesses::Started failed(int fault) {
    return {.child = nullptr, .fault = std::generic_category().message(fault)};
}

} // namespace

ports::ChildProcesses::Started LinuxChildProcesses::start(const ports::ChildStart& start) {
    Pipe input;
    Pipe output;
    Pipe errors;
    if (!input.open() || !output.open() || (!start.mergeErrors && !errors.open()))
        return failed(errno);
    std::vector<std::string_view> replaced;
    replaced.reserve(start.environment.size());
    for (const auto& [name, value] : start.environment)
        replaced.push_back(name);
    std::vector<std::string> environment = environmentWithout(replaced);
    for (const auto& [name, value] : start.environment)
        environment.push_back(absl::StrFormat("%s=%s", name, value));

    pid_t id = 0;
    const int fault = spawn({.program = start.program,
                             .arguments = start.arguments,
                             .environment = std::move(environment),
                             .input = input.reading.get(),
                             .output = output.writing.get(),
                             .errors = (start.mergeErrors ? output : errors).writing.get()},
                            id);
    if (fault != 0)
        return failed(fault);
    Descriptor process = openProcess(id); // still ours: nobody has waited for it
    if (!process) {
        const int kept = errno;
        ::kill(-id, SIGKILL);
        while (::waitpid(id, nullptr, 0) < 0 && errno == EINTR) {
        }
        return failed(kept);
    }
    return {.child =
                std::make_unique<LinuxChildProcess>(id, std::move(process), std::move(input.writing),
                                                    std::move(output.reading), std::move(errors.reading)),
            .fault = {}};
}

} // namespace zenka::platform
