#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace zenka::lumixHelper {

using Bytes = std::vector<std::uint8_t>;
using Milliseconds = std::chrono::milliseconds;

/// The pipes of one PTP device, with its interface claimed for the life of the object. No call waits longer
/// than its limit, and none goes on waiting once the helper is asked to end.
class PtpTransport {
public:
    enum class Fault {
        none,
        timeout,
        stall,   ///< the device refuses until the halt is cleared
        gone,    ///< it has left the bus
        stopped, ///< the helper is to end
        broken,  ///< something else
    };
    struct Received {
        Fault fault = Fault::none;
        Bytes bytes;
    };
    /// What receive() gives at most at once.
    static constexpr std::size_t mostAtOnce = 16384;

    virtual ~PtpTransport() = default;

    /// One transfer to the device, ended as USB wants it.
    virtual Fault send(const Bytes& bytes, Milliseconds limit) = 0;
    /// One transfer from it; it may be an empty one.
    virtual Received receive(Milliseconds limit) = 0;

    virtual void clearStall() = 0;
    /// The class requests of a still image device: the code of its state, the end of a transaction that
    /// hangs, a new beginning.
    virtual std::optional<std::uint16_t> deviceStatus() = 0;
    virtual void cancel(std::uint32_t transaction) = 0;
    virtual void reset() = 0;

    /// The event containers that came since the last call.
    virtual std::vector<Bytes> takeEvents() = 0;
    /// Lets time pass, while events are taken in; comes back early for a fault.
    virtual Fault wait(Milliseconds span) = 0;
    /// From now on the wish to end stops nothing any more: what is left to do lets the body go.
    virtual void beginRelease() = 0;

    /// Milliseconds on a clock that only goes on.
    virtual double nowMs() = 0;
};

} // namespace zenka::lumixHelper
