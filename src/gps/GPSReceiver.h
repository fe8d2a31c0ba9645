#pragma once

#include "gps/GPSFix.h"
#include "ports/Clock.h"
#include "ports/MainLoop.h"
#include "ports/SerialPorts.h"
#include "ports/WorkQueues.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zenka::gps {

/// Finds a USB receiver among the serial devices, reads it, and finds it again when it was pulled. Made and
/// used on the main thread; reads on a queue of its own, "zenka.gps". The ports outlive that queue's work.
class GPSReceiver {
public:
    /// All three are called on the main thread, and not after the receiver has gone.
    struct Listener {
        /// A sentence was understood. The wall time at which it was read comes with an RMC sentence of valid
        /// time only. Where several wait for the main thread, the newest and the newest timed one are told.
        std::function<void(const GPSFix& fix, std::optional<base::Instant> wall)> onUpdate;
        std::function<void(bool connected)> onConnectionChange;
        /// A device was passed over, a whole sentence with its path in it; once for each device and reason.
        std::function<void(const std::string& why)> onPassedOver;
    };

    GPSReceiver(ports::SerialPorts& serialPorts, ports::WorkQueues& queues, ports::MainLoop& loop,
                const ports::Clock& clock);
    GPSReceiver(const GPSReceiver&) = delete;
    GPSReceiver& operator=(const GPSReceiver&) = delete;
    ~GPSReceiver();

    /// Searches and reads from now on. A second call does nothing.
    void start(Listener listener);

private:
    struct Reader; // works on the queue
    std::shared_ptr<const Listener> listener_;
    std::shared_ptr<Reader> reader_;
};

} // namespace zenka::gps
