#include "platform/LinuxFireTimer.h"

#include "platform/Guarded.h"
#include "platform/RealtimePriority.h"

#include <array>
#include <cmath>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <tuple>
#include <utility>

namespace zenka::platform {

namespace {

/// The timer whose beat thread this is.
thread_local const LinuxFireTimer* ownTimer = nullptr;

} // namespace

LinuxFireTimer::LinuxFireTimer() : LinuxFireTimer(Priority{}) {
}

LinuxFireTimer::LinuxFireTimer(Priority priority)
    : priority_(std::move(priority)), timer_(::timerfd_create(CLOCK_BOOTTIME, TFD_CLOEXEC | TFD_NONBLOCK)),
      control_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
}

LinuxFireTimer::~LinuxFireTimer() {
    stop();
}

void LinuxFireTimer::start(base::Seconds period, base::Seconds slack, std::function<void()> beat) {
    const bool fromBeat = ownTimer == this;
    std::unique_lock life(lifeMutex_, std::defer_lock);
    if (!fromBeat) {
        life.lock();
        // a thread that was stopped from within its beat is on its way out
        bool ended = false;
        {
            const std::lock_guard lock(mutex_);
            ended = !running_ && thread_.joinable();
        }
        if (ended) {
            thread_.join();
            asking_.reset();
        }
    }
    auto replaced = std::make_shared<const std::function<void()>>(std::move(beat));
    std::unique_lock lock(mutex_);
    if (stopping_)
        return; // another thread's stop() has the last word
    beat_.swap(replaced);
    wakeAt_ = foreverNs;
    running_ = true;
    setRate(period, slack);
    if (fromBeat)
        return;
    if (!thread_.joinable()) {
        thread_ = std::thread([this] { serve(); });
        return;
    }
    beatEnded_.wait(lock, [this] { return !beating_ || beating_ == beat_; });
}

void LinuxFireTimer::reschedule(base::Seconds period, base::Seconds slack) {
    const std::lock_guard lock(mutex_);
    if (running_)
        setRate(period, slack);
}

void LinuxFireTimer::wakeAt(double continuousSeconds) {
    const std::lock_guard lock(mutex_);
    wakeAt_ = std::isfinite(continuousSeconds) ? nanosecondsOf(continuousSeconds) : foreverNs;
    if (running_)
        armSharp(); // the waiting thread sees the timerfd set anew, it need not be woken for that
}

void LinuxFireTimer::stop() {
    if (ownTimer == this) {
        const std::lock_guard lock(mutex_);
        running_ = false;
        return;
    }
    const std::lock_guard life(lifeMutex_);
    {
        const std::lock_guard lock(mutex_);
        running_ = false;
        stopping_ = true;
        interruptWait();
    }
    if (thread_.joinable())
        thread_.join();
    asking_.reset();
    std::shared_ptr<const std::function<void()>> ended;
    const std::lock_guard lock(mutex_);
    stopping_ = false;
    beat_.swap(ended);
    wakeAt_ = foreverNs;
}

void LinuxFireTimer::setRate(base::Seconds period, base::Seconds slack) {
    period_ = std::max(nanosecondsOf(period.count()), shortestPeriodNs);
    slack_ = nanosecondsOf(slack.count());
    nextBeat_ = readClock(CLOCK_BOOTTIME) + period_;
    interruptWait();
}

void LinuxFireTimer::serve() {
    ownTimer = this;
    pthread_setname_np(pthread_self(), "zenka.fire");
    getPriority();
    std::unique_lock lock(mutex_);
    while (running_) {
        const Nanoseconds now = readClock(CLOCK_BOOTTIME);
        if (std::min(nextBeat_, wakeAt_) <= now)
            beatOnce(lock, now);
        else
            waitForDue(lock, now);
    }
}

void LinuxFireTimer::getPriority() {
    if ((priority_.take && takeRealtimePriority()) || !priority_.ask)
        return;
    const std::lock_guard lock(mutex_);
    asking_.emplace([thread = ::gettid(), bus = priority_.systemBusAddress] {
        askForRealtimePriority(thread, bus); // no grant is no error
    });
}

void LinuxFireTimer::beatOnce(std::unique_lock<std::mutex>& lock, Nanoseconds now) {
    if (wakeAt_ <= now)
        wakeAt_ = foreverNs;
    nextBeat_ = nextOnGrid(nextBeat_, period_, now);
    beating_ = beat_;
    const auto* beat = beating_.get();
    lock.unlock();
    runGuarded("fire thread", *beat);
    lock.lock();
    auto ended = std::exchange(beating_, nullptr);
    beatEnded_.notify_all();
    if (ended.use_count() == 1) { // replaced from within: what it owns may call back while it goes
        lock.unlock();
        ended.reset();
        lock.lock();
    }
}

void LinuxFireTimer::waitForDue(std::unique_lock<std::mutex>& lock, Nanoseconds now) {
    armSharp();
    const timespec timeOut = timespecOf(nextBeat_ - now);
    ::prctl(PR_SET_TIMERSLACK, std::max<Nanoseconds>(slack_, 1)); // 0 would mean the default
    lock.unlock();
    std::array<pollfd, 2> sources{pollfd{.fd = control_.get(), .events = POLLIN, .revents = 0},
                                  pollfd{.fd = timer_.get(), .events = POLLIN, .revents = 0}};
    ::ppoll(sources.data(), sources.size(), &timeOut, nullptr);
    std::uint64_t count = 0;
    std::ignore = ::read(control_.get(), &count, sizeof count);
    lock.lock();
}

void LinuxFireTimer::armSharp() {
    armTimer(timer_.get(), std::min(wakeAt_, nextBeat_ + slack_));
}

void LinuxFireTimer::interruptWait() {
    const std::uint64_t one = 1;
    std::ignore = ::write(control_.get(), &one, sizeof one);
}

} // namespace zenka::platform
