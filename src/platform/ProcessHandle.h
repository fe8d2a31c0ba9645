#pragma once

#include "platform/Descriptor.h"

#include <sys/syscall.h>
#include <sys/types.h>

namespace zenka::platform {

// By number, as the C library's header of these calls cannot be used from C++.

/// A handle that means this process even when its id has gone to another; readable once it has ended.
/// Empty with errno set when there is no such process.
inline Descriptor openProcess(pid_t id) {
    return Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, id, 0)));
}

inline bool sendSignal(const Descriptor& process, int signal) {
    return ::syscall(SYS_pidfd_send_signal, process.get(), signal, nullptr, 0) == 0;
}

} // namespace zenka::platform
