#pragma once

#include "base/Instant.h"

#include <memory>
#include <string>
#include <vector>

namespace zenka::ports {

/// A serial line that is open for reading, raw. It belongs to one thread, not the main one, as reading waits.
class SerialLine {
public:
    struct Reading {
        std::string bytes; ///< what has come, 512 bytes at most; empty when nothing came within the limit
        bool gone = false; ///< the device has left, or fails: nothing will come any more
    };

    virtual ~SerialLine() = default;

    /// Gives what has come as soon as there is anything, and waits no longer than the limit.
    virtual Reading read(base::Seconds limit) = 0;
};

/// The serial devices that a receiver can be. Any thread but the main one.
class SerialPorts {
public:
    struct Opened {
        std::unique_ptr<SerialLine> line; ///< null when it could not be opened
        std::string fault;                ///< why, as the end of a sentence: "another program is using it"
    };

    virtual ~SerialPorts() = default;

    /// Paths, in order; none when they cannot be listed.
    virtual std::vector<std::string> candidates() = 0;

    /// Opens a device at a speed, 8 bits, no parity. Does not wait for a carrier, takes no control of the
    /// terminal, and leaves a device alone that another program has open.
    virtual Opened open(const std::string& path, int baud) = 0;
};

} // namespace zenka::ports
