#pragma once

#include "cameras/sony/SonyWaits.h"
#include "ports/SharedLibraries.h"

#include <cstdint>
#include <memory>

/// The flat functions over Sony's Camera Remote SDK: one state for the process. Any thread but the main one,
/// as each call waits for those of others; the functions below "What is known" do not wait.
///
/// A handle is a session with a body. It is never 0, and never given to a second session, so one that has
/// ended is refused and not taken for another. With no SDK on the machine everything answers as when there
/// is no camera. The numbers returned by functions that do something are 1 for success and 0 for failure.
namespace zenka::cameras {

// NOLINTBEGIN(readability-identifier-naming)

/// Where the SDK is to be found and how to wait. Null libraries: nowhere. They outlive all use.
void zenka_sony_set_up(ports::SharedLibraries* libraries,
                       std::shared_ptr<const SonyWaits> waits = std::make_shared<const SonyWaits>());

/// Once is enough; more do nothing.
int zenka_sony_init();
/// 0 when there is no SDK. It need not be initialised.
std::uint32_t zenka_sony_sdk_version();
/// Looks for bodies for three seconds, and writes the model and the id, in hexadecimal, of each to the
/// buffers of `maxCameras` entries of `stride` bytes. Their number.
int zenka_sony_enumerate(char* names, char* ids, int maxCameras, int stride);
/// Takes control of a body of the last enumeration; its handle, or 0. With an id it is the body of that id,
/// wherever in the list it may stand by now. A body that is held already is refused.
std::int64_t zenka_sony_connect(int index, const char* id = nullptr);
/// iso below 1, aperture of 0 or less and a negative shutterSec stay as they are; a shutterSec of 0 is bulb.
/// 0 when the body refused a setting; the others were sent all the same.
int zenka_sony_set_exposure(std::int64_t handle, int iso, double aperture, double shutterSec, double expComp);
/// `error` is what zenka_sony_last_fire_error() gives, but not another body's.
int zenka_sony_fire(std::int64_t handle, std::uint32_t* error = nullptr);
/// The shutters that the body offers: "30,25,...,1/8000".
int zenka_sony_shutter_ladder(std::int64_t handle, char* buffer, int size);
/// 1 when the drive dial is on a continuous mode.
int zenka_sony_drive_is_burst(std::int64_t handle);
int zenka_sony_firmware(std::int64_t handle, char* buffer, int size);
/// "fm=1 dm=10000 ...", in hexadecimal.
int zenka_sony_state_dump(std::int64_t handle, char* buffer, int size);
/// The next shot sends every setting.
void zenka_sony_reset_expo_cache(std::int64_t handle);
/// 1 when the session still answers.
int zenka_sony_health_ping(std::int64_t handle);
void zenka_sony_disconnect(std::int64_t handle);
/// All sessions that are open.
void zenka_sony_disconnect_all();
/// The end of the SDK. It may be initialised again.
void zenka_sony_release();

// What is known: these do not wait.

/// Of the last fire, whichever body it was: an error code of the SDK, 65535 when there was no body to fire.
std::uint32_t zenka_sony_last_fire_error();
/// The last fault that the SDK told since the last connection.
std::uint32_t zenka_sony_last_callback_error();
/// Seconds of the shutter that was sent last; the negative of the asked ones where nothing near was offered.
double zenka_sony_last_sent_shutter(std::int64_t handle);
int zenka_sony_is_connected(std::int64_t handle);
/// 1 while the SDK repairs the link by itself.
int zenka_sony_reconnecting(std::int64_t handle);
/// Captures that the body has confirmed; -1 for an unknown handle.
int zenka_sony_captured_count(std::int64_t handle);
/// The result of the last operation that the body refused, 0 for none.
int zenka_sony_last_op_ng(std::int64_t handle);
/// 1 when the last connection came to stand.
int zenka_sony_last_handshake_ok();
/// What the last connection saw and what it left.
std::uint32_t zenka_sony_priority_before();
std::uint32_t zenka_sony_priority_after();
std::uint32_t zenka_sony_exposure_program_before();
std::uint32_t zenka_sony_exposure_program_after();

// NOLINTEND(readability-identifier-naming)

} // namespace zenka::cameras
