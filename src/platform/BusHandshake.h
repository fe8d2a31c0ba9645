#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace zenka::platform {

/// The socket that a bus address means ("unix:path=..." or "unix:abstract=...", the first of several);
/// an abstract name begins with a zero byte. Nothing for an address of another kind.
std::optional<std::string> socketOfBus(const std::string& address);

/// Whether a bus takes a connection and answers the first word of the handshake (freedesktop.org,
/// "Authentication Protocol"). QtDBus itself would wait for that word without end. Waits for the limit at
/// most.
bool busAnswers(const std::string& address, std::chrono::milliseconds limit);

} // namespace zenka::platform
