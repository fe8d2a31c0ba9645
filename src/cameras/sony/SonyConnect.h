#pragma once

#include "cameras/sony/SonyBridgeState.h"

#include <string>

namespace zenka::cameras::SonyConnect {

/// The id of a camera of a list, in hexadecimal.
std::string idOf(const CrSDKCamera& camera);

/// Begins a session with a camera of the last enumeration, whose index is good, and takes control of the
/// body. Its handle, 0 when it does not come to stand. It takes up to 15 s, with the SDK in the caller's
/// hands all the while.
std::int64_t connect(const SonySdk& sdk, std::uint32_t index);

/// Ends a session; an unknown one is no fault.
void disconnect(const SonySdk& sdk, std::int64_t handle);

} // namespace zenka::cameras::SonyConnect
