#pragma once

#include <string>
#include <sys/types.h>

namespace zenka::platform {

/// A low real-time priority (round robin) for the calling thread, not handed on to its children. False
/// when the process may not.
bool takeRealtimePriority();

/// The same for a thread of this process, from RealtimeKit, which demands that the process bounds the
/// processor time of its real-time threads (RLIMIT_RTTIME); that is done here. Waits for the answer. An
/// empty address means the machine's system bus.
bool askForRealtimePriority(pid_t thread, const std::string& systemBusAddress);

} // namespace zenka::platform
