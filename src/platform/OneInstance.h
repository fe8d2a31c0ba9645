#pragma once

#include "platform/Descriptor.h"

#include <QByteArray>
#include <QLocalServer>

#include <filesystem>
#include <functional>

namespace zenka::platform {

/// Sees to it that one program at a time holds a user's rig: two would take the bodies from each other and
/// write over each other's lists. The lock is the system's, so that a killed program leaves none behind. Main
/// thread, behind the application object.
class OneInstance {
public:
    /// The folder is the one that both would write to.
    explicit OneInstance(std::filesystem::path folder);

    /// False when another program has the folder. A disk that knows no locks keeps nobody from starting.
    bool first() const { return first_; }

    /// From now on hears what later ones pass on, of this user alone.
    void listen(std::function<void(const QByteArray& words)> heard);

    /// Passes words on to the first one; false when it does not take them within two seconds.
    bool passOn(const QByteArray& words) const;

private:
    void serve();

    std::filesystem::path folder_;
    Descriptor lock_;
    bool first_ = true;
    QLocalServer server_;
    std::function<void(const QByteArray&)> heard_;
};

} // namespace zenka::platform
