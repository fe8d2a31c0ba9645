#include "gps/Outbox.h"

#include <utility>

namespace zenka::gps {

void Outbox::connection(bool connected) {
    const std::lock_guard lock(mutex_);
    waiting_.timed.reset();
    waiting_.newest.reset();
    if (connected)
        waiting_.connected = true;
    else if (!std::exchange(waiting_.connected, false))
        waiting_.lost = true;
}

void Outbox::update(const GPSFix& fix, std::optional<base::Instant> wall) {
    const std::lock_guard lock(mutex_);
    const Update update{.fix = fix, .wall = wall};
    if (wall) {
        waiting_.timed = update;
        waiting_.newest.reset();
    } else {
        waiting_.newest = update;
    }
}

void Outbox::passedOver(std::string why) {
    const std::lock_guard lock(mutex_);
    waiting_.passedOver.push_back(std::move(why));
}

bool Outbox::takeTurn() {
    const std::lock_guard lock(mutex_);
    return !std::exchange(turnTaken_, true);
}

void Outbox::deliver(const std::weak_ptr<const GPSReceiver::Listener>& listener) {
    Waiting waiting;
    {
        const std::lock_guard lock(mutex_);
        waiting = std::exchange(waiting_, Waiting{});
        turnTaken_ = false;
    }
    // Any of the calls may end the receiver.
    const auto tell = [&listener](auto function, const auto&... what) {
        if (const auto alive = listener.lock(); alive && (*alive).*function)
            ((*alive).*function)(what...);
    };
    using Listener = GPSReceiver::Listener;
    for (const std::string& why : waiting.passedOver)
        tell(&Listener::onPassedOver, why);
    if (waiting.lost)
        tell(&Listener::onConnectionChange, false);
    if (waiting.connected)
        tell(&Listener::onConnectionChange, true);
    for (const auto& update : {waiting.timed, waiting.newest})
        if (update)
            tell(&Listener::onUpdate, update->fix, update->wall);
}

} // namespace zenka::gps
