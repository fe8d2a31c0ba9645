#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace zenka::test {

/// What the library in fake_edsdk.cpp plays and has been asked. A test gets it by the symbol fake_edsdk.
struct FakeEdsdk {
    struct Body {
        std::string model;
        std::string serial;
        int serialRefusals = 0; ///< readings of the serial number that fail before one succeeds
        bool session = false;
    };

    std::vector<Body> bodies;       ///< that are plugged in now; a list that was taken keeps those of then
    std::vector<std::string> calls; ///< "open EOS R5", "set 402=58", "command 4 10003", ...

    /// What the next calls of a name give; 0 when there is nothing left. A shutter button that is refused
    /// makes the older command fail alike.
    std::map<std::string, std::deque<std::uint32_t>> results;
    /// State events that the next pump brings, each for the body of a model.
    std::deque<std::pair<std::uint32_t, std::string>> events;

    int pumps = 0;
    int references = 0; ///< that the caller still has to release
    int sessions() const {
        int open = 0;
        for (const Body& body : bodies)
            open += body.session;
        return open;
    }
};

} // namespace zenka::test
