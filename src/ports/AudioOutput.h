#pragma once

#include <optional>
#include <string>

namespace zenka::ports {

/// What the default output of sound is set to.
struct AudioState {
    std::optional<bool> muted;   ///< absent where there is no output, or it cannot be asked
    std::optional<float> volume; ///< 0 to 1, or more where the desktop amplifies; absent likewise
    std::string fault;           ///< why they are absent, as the end of a sentence: "no sound server answers"

    friend bool operator==(const AudioState&, const AudioState&) = default;
};

class AudioOutput {
public:
    virtual ~AudioOutput() = default;

    /// As it was last heard of, which is never long ago. Never waits. Main thread.
    virtual AudioState state() const = 0;
};

} // namespace zenka::ports
