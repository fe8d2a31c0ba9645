#pragma once

#include <functional>
#include <string>

namespace zenka::ports {

/// Short sounds of the desktop, by name. Main thread; nothing waits for the sound.
class AlertSounds {
public:
    /// Why a sound could not be played, as the end of a sentence; called once at most, on the main thread.
    using Failed = std::function<void(const std::string& fault)>;

    virtual ~AlertSounds() = default;

    /// Plays a sound over all that plays already.
    virtual void play(const std::string& name, Failed failed) = 0;
};

} // namespace zenka::ports
