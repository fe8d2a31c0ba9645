#include "platform/QtMainLoop.h"

#include "platform/Guarded.h"

#include <cassert>
#include <sys/eventfd.h>
#include <tuple>

namespace zenka::platform {

namespace {

constexpr Nanoseconds budgetNs = 5'000'000;

} // namespace

QtMainLoop::QtMainLoop()
    : wakeEvent_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      timer_(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)),
      wakeNotifier_(wakeEvent_.get(), QSocketNotifier::Read),
      timerNotifier_(timer_.get(), QSocketNotifier::Read) {
    QObject::connect(&wakeNotifier_, &QSocketNotifier::activated, [this] { serve(); });
    QObject::connect(&timerNotifier_, &QSocketNotifier::activated, [this] { serve(); });
}

QtMainLoop::~QtMainLoop() {
    std::vector<Post> incoming;
    {
        const std::lock_guard lock(mutex_);
        closed_ = true;
        incoming.swap(incoming_);
    }
    // what these own may call back into this loop while it goes
    std::deque<Post> ready = std::exchange(ready_, {});
    std::map<Due, Timer> timers = std::exchange(timers_, {});
    timerDues_.clear();
}

void QtMainLoop::post(Function function) {
    const std::lock_guard lock(mutex_);
    if (closed_)
        return;
    // stamped under the lock, so that the queue is in order of its stamps
    incoming_.push_back({.due = {readClock(CLOCK_MONOTONIC), sequence_++}, .function = std::move(function)});
    if (!std::exchange(wakePending_, true))
        wake();
}

ports::MainLoop::TimerId QtMainLoop::after(base::Seconds delay, Function function) {
    return addTimer(nanosecondsOf(delay.count()), 0, std::move(function));
}

ports::MainLoop::TimerId QtMainLoop::every(base::Seconds period, Function function) {
    const Nanoseconds held = std::max(nanosecondsOf(period.count()), shortestPeriodNs);
    return addTimer(held, held, std::move(function));
}

void QtMainLoop::cancel(TimerId timer) {
    assert(onMainThread());
    const auto found = timerDues_.find(timer);
    if (found == timerDues_.end())
        return;
    // a timer that runs just now is only in timerDues_, and is not put back when missing there
    const auto node = timers_.extract(found->second);
    timerDues_.erase(found);
}

ports::MainLoop::TimerId QtMainLoop::addTimer(Nanoseconds delay, Nanoseconds period, Function function) {
    assert(onMainThread());
    const Due due{readClock(CLOCK_MONOTONIC) + delay, sequence_++};
    const TimerId id{due.sequence + 1}; // never none
    insertTimer(due, {.id = id, .period = period, .function = std::move(function)});
    return id;
}

void QtMainLoop::insertTimer(Due due, Timer timer) {
    timerDues_[timer.id] = due;
    timers_.emplace(due, std::move(timer));
    // a timerfd set too early costs one wake for nothing and is put right there
    if (due.instant < armedFor_) {
        armedFor_ = due.instant;
        armTimer(timer_.get(), armedFor_);
    }
}

void QtMainLoop::serve() {
    std::uint64_t count = 0;
    std::ignore = ::read(wakeEvent_.get(), &count, sizeof count);
    const Nanoseconds begin = readClock(CLOCK_MONOTONIC);
    collectPosts();
    bool more = true;
    while (more) {
        // each is taken out before it runs: a function may add, cancel, and run a loop of its own
        const bool postDue = !ready_.empty() && ready_.front().due.instant <= begin;
        const bool timerDue = !timers_.empty() && timers_.begin()->first.instant <= begin;
        if (timerDue && (!postDue || timers_.begin()->first < ready_.front().due)) {
            runTimer();
        } else if (postDue) {
            const Post next = std::move(ready_.front());
            ready_.pop_front();
            runGuarded("main loop", next.function);
        } else {
            more = false;
        }
        more = more && readClock(CLOCK_MONOTONIC) - begin < budgetNs;
    }
    // an event on the descriptor, not one of Qt's: those that are posted while others run are run with
    // them, before the window's
    if (!ready_.empty())
        wake();
    const Nanoseconds next = timers_.empty() ? foreverNs : timers_.begin()->first.instant;
    if (next != armedFor_ || next <= readClock(CLOCK_MONOTONIC)) {
        armedFor_ = next;
        armTimer(timer_.get(), armedFor_);
    }
}

void QtMainLoop::collectPosts() {
    const std::lock_guard lock(mutex_);
    wakePending_ = false;
    std::move(incoming_.begin(), incoming_.end(), std::back_inserter(ready_));
    incoming_.clear();
}

void QtMainLoop::runTimer() {
    auto node = timers_.extract(timers_.begin());
    Timer& timer = node.mapped();
    if (timer.period == 0)
        timerDues_.erase(timer.id);
    runGuarded("main loop", timer.function);
    if (timer.period == 0 || !timerDues_.contains(timer.id))
        return;
    const Nanoseconds next = nextOnGrid(node.key().instant, timer.period, readClock(CLOCK_MONOTONIC));
    insertTimer({next, sequence_++}, std::move(timer));
}

void QtMainLoop::wake() {
    const std::uint64_t one = 1;
    std::ignore = ::write(wakeEvent_.get(), &one, sizeof one);
}

} // namespace zenka::platform
