#pragma once

#include "platform/Descriptor.h"

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace zenka::platform {

/// Calls a function on the main thread when the system asks the process to end (SIGTERM, SIGINT, SIGHUP), so
/// that it can close in order. A second such signal ends the process at once. One at a time, made on the
/// main thread behind the application object.
class QuitSignals {
public:
    explicit QuitSignals(std::function<void()> quit);
    QuitSignals(const QuitSignals&) = delete;
    QuitSignals& operator=(const QuitSignals&) = delete;
    ~QuitSignals();

private:
    Descriptor event_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace zenka::platform
