#include "platform/virtual/VirtualTime.h"

#include <algorithm>

namespace zenka::platform {

VirtualTime::Ticket VirtualTime::at(double continuousSeconds, Lane lane, Function function) {
    const double instant = std::max(continuousSeconds, continuous_);
    const Ticket ticket = ++lastTicket_;
    agenda_.emplace(Key{instant, ticket}, Entry{lane, std::move(function)});
    instants_.emplace(ticket, instant);
    return ticket;
}

void VirtualTime::cancel(Ticket ticket) {
    const auto instant = instants_.find(ticket);
    if (instant == instants_.end())
        return;
    agenda_.erase(Key{instant->second, ticket});
    instants_.erase(instant);
}

void VirtualTime::runFor(base::Seconds span) {
    const double end = continuous_ + span.count();
    while (runNext(end)) {
    }
    passTo(end);
}

bool VirtualTime::runUntil(const std::function<bool()>& done, base::Seconds limit) {
    const double end = continuous_ + limit.count();
    while (!done()) {
        if (!runNext(end))
            return false;
    }
    return true;
}

void VirtualTime::sleepFor(base::Seconds span) {
    wall_ = wall_ + span;
    continuous_ += span.count();
}

bool VirtualTime::runNext(double until) {
    auto next = agenda_.begin();
    if (continuous_ < mainStalledUntil_) {
        // Another thread's work goes first as long as the main thread stands.
        next = std::find_if(agenda_.begin(), agenda_.end(), [this](const auto& item) {
            return item.second.lane == Lane::other || item.first.first >= mainStalledUntil_;
        });
        if (next == agenda_.end() || next->first.first >= mainStalledUntil_) {
            if (mainStalledUntil_ > until)
                return false;
            passTo(mainStalledUntil_);
            next = agenda_.begin();
        }
    }
    if (next == agenda_.end() || next->first.first > until)
        return false;

    passTo(next->first.first);
    const auto node = agenda_.extract(next);
    instants_.erase(node.key().second);
    const Lane before = std::exchange(lane_, node.mapped().lane);
    node.mapped().function();
    lane_ = before;
    return true;
}

void VirtualTime::passTo(double continuousSeconds) {
    if (continuousSeconds <= continuous_)
        return;
    const double span = continuousSeconds - continuous_;
    wall_ = wall_ + base::Seconds{span};
    uptime_ += span;
    continuous_ = continuousSeconds;
}

} // namespace zenka::platform
