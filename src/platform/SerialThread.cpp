#include "platform/SerialThread.h"

#include "platform/Guarded.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <pthread.h>
#include <tuple>

namespace zenka::platform {

namespace {

constexpr std::size_t remarkableSize = 100'000;

} // namespace

SerialThread::SerialThread(std::string name, Report report)
    : name_(std::move(name)), report_(std::move(report)), thread_([this] { serve(); }) {
}

SerialThread::~SerialThread() {
    close();
}

SerialThread::Clock::time_point SerialThread::fromNow(base::Seconds span) {
    constexpr base::Seconds longest = std::chrono::hours(24 * 365);
    const base::Seconds held = span > base::Seconds::zero() ? std::min(span, longest) : base::Seconds::zero();
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(held);
}

bool SerialThread::later(const Piece& left, const Piece& right) {
    return std::tie(left.due, left.sequence) > std::tie(right.due, right.sequence);
}

void SerialThread::post(ports::WorkQueue::Function function) {
    std::unique_lock lock(mutex_);
    if (closing_)
        return;
    ready_.push_back({.due = Clock::now(), .sequence = sequence_++, .function = std::move(function)});
    ++posted_;
    noteSize(lock);
}

void SerialThread::postAfter(base::Seconds delay, ports::WorkQueue::Function function) {
    std::unique_lock lock(mutex_);
    if (closing_)
        return;
    delayed_.push_back({.due = fromNow(delay), .sequence = sequence_++, .function = std::move(function)});
    std::push_heap(delayed_.begin(), delayed_.end(), later);
    noteSize(lock);
}

void SerialThread::noteSize(std::unique_lock<std::mutex>& lock) {
    const std::size_t size = ready_.size() + delayed_.size();
    const bool report = size >= remarkableSize && !reported_;
    reported_ = reported_ || report;
    lock.unlock();
    work_.notify_one();
    if (report && report_)
        report_(absl::StrFormat("The work queue \"%s\" is not keeping up: %d pieces wait.", name_, size));
}

bool SerialThread::drain(base::Seconds limit) {
    const auto end = fromNow(limit);
    std::unique_lock lock(mutex_);
    const std::uint64_t target = posted_;
    return progress_.wait_until(lock, end, [&] { return done_ >= target; });
}

void SerialThread::close() {
    const std::lock_guard lock(mutex_);
    closing_ = true;
    work_.notify_one();
}

bool SerialThread::finished() const {
    const std::lock_guard lock(mutex_);
    return finished_;
}

std::optional<SerialThread::Piece> SerialThread::take(bool& immediate) {
    // work that was delayed runs before what was posted after it fell due
    immediate = !ready_.empty() && (delayed_.empty() || ready_.front().due < delayed_.front().due);
    if (immediate) {
        Piece piece = std::move(ready_.front());
        ready_.pop_front();
        return piece;
    }
    if (delayed_.empty() || (!closing_ && delayed_.front().due > Clock::now()))
        return std::nullopt;
    std::pop_heap(delayed_.begin(), delayed_.end(), later);
    Piece piece = std::move(delayed_.back());
    delayed_.pop_back();
    return piece;
}

void SerialThread::serve() {
    // the system's limit is 15 bytes
    pthread_setname_np(pthread_self(), name_.substr(0, 15).c_str());
    std::unique_lock lock(mutex_);
    for (;;) {
        bool immediate = false;
        if (std::optional<Piece> piece = take(immediate)) {
            lock.unlock();
            runGuarded(name_.c_str(), piece->function);
            piece.reset(); // what it owns is gone before anyone hears that it is done
            lock.lock();
            if (immediate) {
                ++done_;
                progress_.notify_all();
            }
            if (ready_.size() + delayed_.size() < remarkableSize / 2)
                reported_ = false;
        } else if (closing_) {
            finished_ = true;
            return;
        } else if (delayed_.empty()) {
            work_.wait(lock);
        } else {
            const auto due = delayed_.front().due; // a copy: the heap may move while this waits
            work_.wait_until(lock, due);
        }
    }
}

} // namespace zenka::platform
