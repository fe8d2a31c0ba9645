#pragma once

#include "platform/Descriptor.h"
#include "platform/Nanoseconds.h"
#include "ports/MainLoop.h"

#include <QSocketNotifier>

#include <atomic>
#include <deque>
#include <map>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

namespace zenka::platform {

/// The main loop on the event loop of a QCoreApplication. Made and destroyed on the main thread, after
/// and before the application object.
///
/// Timers stand in one queue behind one timerfd, as QTimer rounds to milliseconds. Their clock is
/// CLOCK_MONOTONIC: they are time-outs and pauses, and a device gets the whole of its time-out even
/// when the machine slept within it; what belongs to an instant of the sky hangs on the FireTimer. As
/// posts and timers are ordered by this one clock, a sleep changes no order.
///
/// One wake of the loop runs what was due when it began, and no more than about 5 ms of that, before
/// the window's own events get their turn. A function that itself runs an event loop lets others run
/// within it.
///
/// Destroying the loop destroys what still waits, unrun; a post that races with that is dropped.
class QtMainLoop final : public ports::MainLoop {
public:
    QtMainLoop();
    QtMainLoop(const QtMainLoop&) = delete;
    QtMainLoop& operator=(const QtMainLoop&) = delete;
    ~QtMainLoop() override;

    void post(Function function) override;
    TimerId after(base::Seconds delay, Function function) override;

    /// Beats missed in a stall are left out; a period is at least 0.1 ms.
    TimerId every(base::Seconds period, Function function) override;
    void cancel(TimerId timer) override;
    bool onMainThread() const override { return std::this_thread::get_id() == mainThread_; }

private:
    /// Place in the order: the instant, then the order of the call.
    struct Due {
        Nanoseconds instant = 0;
        std::uint64_t sequence = 0;
        friend auto operator<=>(const Due&, const Due&) = default;
    };
    struct Post {
        Due due;
        Function function;
    };
    struct Timer {
        TimerId id = TimerId::none;
        Nanoseconds period = 0; // 0: once
        Function function;
    };

    TimerId addTimer(Nanoseconds delay, Nanoseconds period, Function function);
    void insertTimer(Due due, Timer timer);
    void serve();
    void collectPosts();
    void runTimer();
    void wake();

    const std::thread::id mainThread_ = std::this_thread::get_id();
    Descriptor wakeEvent_;
    Descriptor timer_;
    std::atomic<std::uint64_t> sequence_ = 0;

    std::mutex mutex_; // guards the three below
    std::vector<Post> incoming_;
    bool wakePending_ = false;
    bool closed_ = false;

    // main thread only
    std::deque<Post> ready_;
    std::map<Due, Timer> timers_;
    std::unordered_map<TimerId, Due> timerDues_;
    Nanoseconds armedFor_ = foreverNs;

    QSocketNotifier wakeNotifier_;
    QSocketNotifier timerNotifier_;
};

} // namespace zenka::platform
