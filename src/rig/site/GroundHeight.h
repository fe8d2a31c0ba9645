#pragma once

#include "base/Lifeline.h"
#include "ports/Ports.h"

#include <functional>
#include <optional>
#include <string>

namespace zenka::rig {

/// The height of the ground at a point, by a service on the network that answers GET
/// /v1/elevation?latitude=…&longitude=… with {"elevation": [metres]}.
class GroundHeight {
public:
    using Then = std::function<void(std::optional<double> metres)>;

    explicit GroundHeight(const ports::Ports& ports) : ports_(ports) {}

    /// The address in front of the path, from the settings; empty when no service is to be asked.
    std::string host() const;
    void setHost(const std::string& address);

    /// Calls then later, once, with metres above the sea or with nothing; at once with nothing where no
    /// service is to be asked.
    void ask(double lat, double lon, Then then);

private:
    const ports::Ports& ports_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
