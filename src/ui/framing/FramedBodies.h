#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// What a framing can be for: a body, a body that is remembered, a name of the script, or nothing of these.
struct FramedBody {
    std::string name;                ///< for people
    std::string serial;              ///< empty where it tells no body from another
    std::string label;               ///< empty for the plan without a body
    std::string model;               ///< empty where there is none
    std::string lens;                ///< as noted, may be empty
    std::string id;                  ///< of a body in the roster, else empty
    std::vector<std::string> tokens; ///< the names of the script that it answers to

    friend bool operator==(const FramedBody&, const FramedBody&) = default;
};

/// Bodies of the rig first, then remembered ones that are not here, then names of the script that no body
/// answers to, and last the plan.
std::vector<FramedBody> framedBodies(rig::RigModel& rig);

/// The row of the body with an id, else a serial number, else a label; empty ids and serial numbers, and no
/// label at all, are nobody's.
std::optional<int> findFramed(const std::vector<FramedBody>& rows, const std::string& id,
                              const std::string& serial, const std::optional<std::string>& label);

} // namespace zenka::ui
