#pragma once

#include "cameras/canon/CanonMachine.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zenka::cameras {

/// Canon's SDK as the rest of the program asks for it. Its calls run on the main thread, wherever they are
/// made from; nothing here sleeps on it.
class CanonEDSDK {
public:
    struct Found {
        std::string model;
        std::string serial; ///< empty: only an open session tells
        int index = 0;      ///< the slot to connect to

        friend bool operator==(const Found&, const Found&) = default;
    };
    struct Session {
        std::int64_t handle = 0; ///< 0 for none
        std::string serial;      ///< empty where the body does not tell
    };

    /// What it stands on outlives it. Main thread.
    explicit CanonEDSDK(CanonMachine machine);
    CanonEDSDK(const CanonEDSDK&) = delete;
    CanonEDSDK& operator=(const CanonEDSDK&) = delete;

    /// The bodies that the SDK sees, those left out that a session lives on. It wakes the SDK.
    std::vector<Found> enumerate();
    /// Any thread but the main one, as the body may take its time to tell its serial number.
    Session connect(int index) const;
    void close(std::int64_t handle) const;
    std::int64_t reopen(std::int64_t handle) const;
    bool sessionDead(std::int64_t handle) const;
    /// Ends the SDK; all handles are void. The next enumeration wakes it again.
    void releaseSDK();
    /// The library is there and the SDK answers.
    bool ready() const;
    std::string diag() const;

    /// Whether a Canon is on the bus, so that the SDK need not be woken for nothing. Any thread but the main.
    bool canonUSBPresent() const;

    const CanonMachine& machine() const { return machine_; }

private:
    CanonMachine machine_;
    bool ready_ = false; // main thread
};

} // namespace zenka::cameras
