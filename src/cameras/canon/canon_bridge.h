#pragma once

#include "base/Instant.h"
#include "ports/SharedLibraries.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

/// Canon's closed EDSDK as a flat table of functions. One instance for the process, on the main thread only,
/// as the SDK delivers its events there. Nothing throws: a result is 1 or 0, a handle 0 is no camera, and
/// zenka_canon_diag has the words. Without the library all answer as with no camera found.

/// Where the library "libEDSDK.so" comes from, before all other calls. The port outlives their use. What was
/// known of a library and its sessions from before is forgotten.
void zenka_canon_use(zenka::ports::SharedLibraries& libraries);

/// Opens the library and initialises the SDK, where that is not done yet.
std::int32_t zenka_canon_init();

/// How many bodies the SDK sees. Writes the model of each into its slot of `names` and empties that of
/// `serials`, which takes an open session to read; slots are of `stride` bytes, ended by 0. While a session
/// is open the list of bodies stays the one from before.
std::int32_t zenka_canon_enumerate(char* names, char* serials, std::int32_t maxCameras, std::int32_t stride);

/// Opens a session with the body of a slot of the last enumeration; its frames go to the card.
std::int64_t zenka_canon_connect(std::int32_t slot);
/// Whether a session lives on the body of a slot, which then must not be opened once more.
std::int32_t zenka_canon_slot_in_use(std::int32_t slot);
/// Replaces a session that the SDK calls stale. Refused while another one needs the list of bodies.
std::int64_t zenka_canon_reopen(std::int64_t handle);

/// The last thing that the bridge has to say.
void zenka_canon_diag(char* buffer, std::int32_t size);

/// Sends what differs from what the body has taken last; each value snapped to the nearest of its table.
/// 1 when all went through. An ISO below 1, an aperture or a time of 0 or less, and a compensation of 0 send
/// nothing.
std::int32_t zenka_canon_set_exposure(std::int64_t handle, std::int32_t iso, double aperture,
                                      double shutterSec, double expComp);
/// Fires, with up to six more attempts for a body that is busy, and waits between them on this thread: the
/// program itself takes the steps of CanonFire.
std::int32_t zenka_canon_fire(std::int64_t handle);
/// The SDK's result of the last fire, or one of ours.
std::uint32_t zenka_canon_last_fire_err();
inline constexpr std::uint32_t zenka_canon_err_terminated = 0xE0000001;
inline constexpr std::uint32_t zenka_canon_err_session_dead = 0xE0000002;

/// The body has reported that it shuts down or has been pulled.
std::int32_t zenka_canon_session_dead(std::int64_t handle);
/// The body's serial number, with waits between three tries: see CanonSerial.
std::int32_t zenka_canon_serial(std::int64_t handle, char* buffer, std::int32_t size);
/// The next set_exposure sends all.
void zenka_canon_reset_expo_cache(std::int64_t handle);
void zenka_canon_disconnect(std::int64_t handle);
/// Ends the SDK. All handles are void.
void zenka_canon_release();

namespace zenka::cameras {

/// A fire in steps, so that the pauses between its attempts can pass without holding up the thread.
class CanonFire {
public:
    explicit CanonFire(std::int64_t handle) : handle_(handle) {}

    /// Goes on, and tells how long to wait before the next step; nothing when it is over.
    std::optional<base::Seconds> step();
    bool fired() const { return fired_; }

private:
    void over(std::uint32_t error);

    std::int64_t handle_;
    int attempts_ = 0;
    int roundsLeft_ = 0;          // of events to take before the next attempt
    std::uint32_t lastError_ = 0; // of the last attempt
    bool fired_ = false;
};

/// Reads a serial number in steps, of which the body may need some.
class CanonSerial {
public:
    explicit CanonSerial(std::int64_t handle) : handle_(handle) {}

    std::optional<base::Seconds> step();
    /// Empty when it could not be read.
    const std::string& text() const { return text_; }

private:
    const std::int64_t handle_;
    int tries_ = 0;
    std::string text_;
};

} // namespace zenka::cameras
