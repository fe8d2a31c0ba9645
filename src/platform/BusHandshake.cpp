#include "platform/BusHandshake.h"

#include "base/Text.h"
#include "platform/Descriptor.h"

#include <absl/strings/str_format.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace zenka::platform {

namespace {

/// Values of a bus address have odd bytes as %XX.
std::string unescaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            result += static_cast<char>(std::strtol(std::string(text.substr(i + 1, 2)).c_str(), nullptr, 16));
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

Descriptor connected(const std::string& socketName) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (socketName.size() >= sizeof address.sun_path)
        return {};
    std::memcpy(address.sun_path, socketName.data(), socketName.size());
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + socketName.size() +
                                               (socketName.front() == '\0' ? 0 : 1));
    Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    // A local socket connects at once or not at all.
    if (!socket || ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), length) != 0)
        return {};
    return socket;
}

} // namespace

std::optional<std::string> socketOfBus(const std::string& address) {
    const std::string_view first = base::split(address, ';').front();
    if (!first.starts_with("unix:"))
        return std::nullopt;
    for (const std::string_view pair : base::split(first.substr(5), ',')) {
        if (pair.starts_with("path="))
            return unescaped(pair.substr(5));
        if (pair.starts_with("abstract="))
            return absl::StrFormat("%c%s", '\0', unescaped(pair.substr(9)));
    }
    return std::nullopt;
}

bool busAnswers(const std::string& address, std::chrono::milliseconds limit) {
    const auto name = socketOfBus(address);
    if (!name || name->empty())
        return false;
    const Descriptor socket = connected(*name);
    if (!socket)
        return false;
    // A zero byte, then who we are, as the hexadecimal of the decimal user id.
    std::string user;
    for (const char digit : std::to_string(::getuid()))
        user += absl::StrFormat("%02x", digit);
    const std::string hello = absl::StrFormat("%cAUTH EXTERNAL %s\r\n", '\0', user);
    if (::send(socket.get(), hello.data(), hello.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(hello.size()))
        return false;
    pollfd waiting{.fd = socket.get(), .events = POLLIN, .revents = 0};
    if (::poll(&waiting, 1, static_cast<int>(limit.count())) != 1)
        return false;
    char byte = 0;
    return ::recv(socket.get(), &byte, 1, 0) == 1;
}

} // namespace zenka::platform
