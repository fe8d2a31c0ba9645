#pragma once

#include <QCoreApplication>

#include <chrono>
#include <functional>
#include <thread>

namespace zenka::test {

/// Long enough for a machine under load; only a failing test waits so long.
inline constexpr std::chrono::seconds patience{30};

/// Serves the event loop of the main thread until something holds.
inline bool serveUntil(const std::function<bool()>& holds, std::chrono::milliseconds limit = patience) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!holds()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

} // namespace zenka::test
