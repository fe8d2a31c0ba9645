#pragma once

#include "platform/Descriptor.h"
#include "platform/LooseThread.h"
#include "platform/Nanoseconds.h"
#include "ports/FireTimer.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace zenka::platform {

/// The beat on a thread with real-time priority where the process may take it or RealtimeKit grants it;
/// without a grant it beats at ordinary priority.
///
/// A timerfd knows no slack, so the regular beat waits with a time-out under the thread's timer slack
/// (the kernel gives a real-time thread none, which is within the bound), and the timerfd on
/// CLOCK_BOOTTIME holds the sharp instants: that of wakeAt, and the end of the beat's slack, which
/// also makes the beat come at once when the machine wakes from sleep.
///
/// Beats missed in a stall are left out, and one beat serves all that is due. start() and stop() forget
/// an instant asked for before. From within the beat stop() cannot wait for the beat's end: no other
/// beat follows. The timer is not destroyed from within its beat.
class LinuxFireTimer final : public ports::FireTimer {
public:
    struct Priority {
        bool take = true; ///< by the process's own right
        bool ask = true;  ///< from RealtimeKit
        std::string systemBusAddress;
    };

    LinuxFireTimer();
    explicit LinuxFireTimer(Priority priority);
    LinuxFireTimer(const LinuxFireTimer&) = delete;
    LinuxFireTimer& operator=(const LinuxFireTimer&) = delete;
    ~LinuxFireTimer() override;

    void start(base::Seconds period, base::Seconds slack, std::function<void()> beat) override;
    void reschedule(base::Seconds period, base::Seconds slack) override;
    void wakeAt(double continuousSeconds) override;
    void stop() override;

private:
    void setRate(base::Seconds period, base::Seconds slack);
    void serve();
    void getPriority();
    void beatOnce(std::unique_lock<std::mutex>& lock, Nanoseconds now);
    void waitForDue(std::unique_lock<std::mutex>& lock, Nanoseconds now);
    void armSharp();
    void interruptWait();

    const Priority priority_;
    Descriptor timer_;
    Descriptor control_;

    std::mutex lifeMutex_; // held through start() and stop() of other threads than the beat's
    std::mutex mutex_;     // guards the rest; not held while the beat runs
    std::condition_variable beatEnded_;
    std::shared_ptr<const std::function<void()>> beat_;
    std::shared_ptr<const std::function<void()>> beating_; // the one that runs just now
    Nanoseconds period_ = oneSecondNs;
    Nanoseconds slack_ = 0;
    Nanoseconds nextBeat_ = foreverNs;
    Nanoseconds wakeAt_ = foreverNs;
    bool running_ = false;
    bool stopping_ = false;
    std::thread thread_;
    std::optional<LooseThread> asking_;
};

} // namespace zenka::platform
