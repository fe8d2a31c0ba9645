#pragma once

#include "cameras/ExposureChoices.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::cameras {

/// Sony bodies as the SDK sees them, and what it says in words.
struct SonyCRSDK {
    struct Found {
        std::string model;
        std::string serial; ///< the SDK's id of the body, in hexadecimal
        int index = 0;      ///< in the enumeration

        friend bool operator==(const Found&, const Found&) = default;
    };

    /// The bodies that the SDK sees, which takes it three seconds and more. Empty at once while another
    /// enumeration is under way, and after 20 s for one that does not come back. Any thread but the main one.
    static std::vector<Found> enumerate();

    /// An enumeration has been under way for more than 30 s. Any thread.
    static bool enumerateWedged();

    /// Both wait; empty when the body does not tell.
    static std::string firmware(std::int64_t handle);
    static std::string stateDump(std::int64_t handle);
    /// The shutters that the body offers. It waits.
    static ExposureChoices exposureChoices(std::int64_t handle);

    static std::string callbackErrorName(std::uint32_t code);
};

} // namespace zenka::cameras
