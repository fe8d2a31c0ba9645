#pragma once

#include "gps/GPSReceiver.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace zenka::gps {

/// What the reader has to tell, on its way to the main thread. It holds little however long the main
/// thread takes: a connection that came and went again meanwhile is not told of, and of the updates only
/// the newest one, and the newest one with a time, are kept. Any thread.
class Outbox {
public:
    void connection(bool connected);
    void update(const GPSFix& fix, std::optional<base::Instant> wall);
    void passedOver(std::string why);

    /// True once for all that waits: whoever gets it sees to the delivery.
    bool takeTurn();

    /// Tells a listener all that waits, for as long as there is that listener. Main thread.
    void deliver(const std::weak_ptr<const GPSReceiver::Listener>& listener);

private:
    struct Update {
        GPSFix fix;
        std::optional<base::Instant> wall;
    };
    struct Waiting {
        bool lost = false;      // told before `connected`
        bool connected = false; // and what follows belongs to this connection
        std::optional<Update> timed;
        std::optional<Update> newest; // only when it is newer than `timed`
        std::vector<std::string> passedOver;
    };

    std::mutex mutex_;
    Waiting waiting_;
    bool turnTaken_ = false;
};

} // namespace zenka::gps
