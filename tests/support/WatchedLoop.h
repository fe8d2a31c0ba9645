#pragma once

#include "ports/MainLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <ctime>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>

namespace zenka::test {

/// A main loop that fails the test when one of its functions blocks the main thread for more than 5 ms: it
/// sleeps, or waits for a lock, a disk or a child. The time for which it was ready and another thread had
/// the processor does not count, nor does a sleep in which the system fetched the program's own code again.
///
/// Mere work of more than 5 ms fails the test at its third time, or at once when it takes very long: a
/// virtual machine's lost time looks like work as well. Under a sanitizer all work is slow and is let be.
class WatchedLoop final : public ports::MainLoop {
public:
    explicit WatchedLoop(ports::MainLoop& inner) : inner_(inner) {}
    WatchedLoop(const WatchedLoop&) = delete;
    WatchedLoop& operator=(const WatchedLoop&) = delete;
    ~WatchedLoop() override {
        if (schedstat_ >= 0)
            ::close(schedstat_);
    }

    void post(Function function) override { inner_.post(watched(std::move(function))); }
    TimerId after(base::Seconds delay, Function function) override {
        return inner_.after(delay, watched(std::move(function)));
    }
    TimerId every(base::Seconds period, Function function) override {
        return inner_.every(period, watched(std::move(function)));
    }
    void cancel(TimerId timer) override { inner_.cancel(timer); }
    bool onMainThread() const override { return inner_.onMainThread(); }

    /// Runs one function under the watch.
    void run(const Function& function) {
        const double begin = wallMs();
        // All that is measured costs more than most functions, so a recent measure serves several.
        if (begin - last_.wall > recentMs)
            last_ = times();
        const Times before = last_;
        function();
        if (wallMs() - begin <= mostMs)
            return;
        const Times after = last_ = times();
        const double wall = after.wall - begin;
        const double ready = after.ready - before.ready;
        const double worked = after.worked - before.worked;
        const bool slept =
            after.sleeps > before.sleeps && after.pagedIn == before.pagedIn && wall - ready - worked > mostMs;
        const bool toiled = !sanitized && worked > mostMs && (++toils_ > straysAllowed || worked > strayMs);
        if (slept || toiled)
            ADD_FAILURE() << "a function held the main thread for " << wall << " ms: " << worked
                          << " ms of work, ready to run for " << ready << " ms, asleep for the rest";
    }

private:
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    static constexpr bool sanitized = true;
#else
    static constexpr bool sanitized = false;
#endif
    static constexpr double mostMs = 5;
    static constexpr double strayMs = 50;
    static constexpr double recentMs = 0.5;
    static constexpr int straysAllowed = 2;

    struct Times { // milliseconds
        double wall = 0;
        double worked = 0;
        double ready = 0; ///< and not running
        long sleeps = 0;
        long pagedIn = 0;
    };

    static double wallMs() {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration<double, std::milli>(now).count();
    }

    Times times() {
        Times now;
        std::array<char, 96> text{};
        if (schedstat_ < 0)
            schedstat_ = ::open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC);
        // "on the processor, ready, slices", the times in nanoseconds
        const ssize_t length = ::pread(schedstat_, text.data(), text.size(), 0);
        const char* end = text.data() + std::max<ssize_t>(length, 0);
        const char* blank = std::find(static_cast<const char*>(text.data()), end, ' ');
        long long ready = 0;
        if (blank != end)
            std::from_chars(blank + 1, end, ready);
        now.ready = static_cast<double>(ready) / 1e6;
        rusage usage{};
        ::getrusage(RUSAGE_THREAD, &usage);
        now.sleeps = usage.ru_nvcsw;
        now.pagedIn = usage.ru_majflt;
        timespec worked{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &worked);
        now.worked = static_cast<double>(worked.tv_sec) * 1e3 + static_cast<double>(worked.tv_nsec) / 1e6;
        now.wall = wallMs();
        return now;
    }

    Function watched(Function function) {
        return [this, function = std::move(function)] { run(function); };
    }

    ports::MainLoop& inner_;
    int schedstat_ = -1; // of the main thread, by the first call on it
    Times last_;
    int toils_ = 0;
};

} // namespace zenka::test
