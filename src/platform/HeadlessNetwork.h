#pragma once

#include "platform/QtHttpClient.h"
#include "platform/QtMainLoop.h"
#include "platform/QtPixelDecoder.h"
#include "platform/QtSettings.h"
#include "platform/ThreadWorkQueues.h"

#include <QCoreApplication>

#include <string>

namespace zenka::platform {

/// The user's settings, the network and a main loop, for a command-line switch. There can be one
/// application in a process, so none where there is a window.
class HeadlessNetwork {
public:
    HeadlessNetwork() = default;
    HeadlessNetwork(const HeadlessNetwork&) = delete;
    HeadlessNetwork& operator=(const HeadlessNetwork&) = delete;

    /// Serves the main loop until stop().
    void serve() { QCoreApplication::exec(); }
    void stop() { QCoreApplication::quit(); }

private:
    int count_ = 1;
    std::string name_ = "zenka";
    char* arguments_[2] = {name_.data(), nullptr};
    QCoreApplication application_{count_, arguments_};
    ThreadWorkQueues settingsQueues_;

public:
    QtSettings settings{settingsQueues_};
    QtMainLoop loop;
    QtPixelDecoder pixels;
    QtHttpClient http{loop};
    ThreadWorkQueues queues; ///< ends first, with what is under way on it
};

} // namespace zenka::platform
