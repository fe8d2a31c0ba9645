#pragma once

#include "ports/AudioOutput.h"

#include <memory>
#include <string>

namespace zenka::platform {

/// The default output of PulseAudio or PipeWire, by libpulse on a thread of the library's. It hears of each
/// change, starts no server, and looks every two seconds for one that went away. The volume is that of the
/// loudest channel, as the desktop's mixer shows it: 1 is 100 %.
class PulseOutput final : public ports::AudioOutput {
public:
    /// An empty address means the user's usual server.
    explicit PulseOutput(const std::string& server = {});
    PulseOutput(const PulseOutput&) = delete;
    PulseOutput& operator=(const PulseOutput&) = delete;
    ~PulseOutput() override;

    ports::AudioState state() const override;

private:
    class Listener;
    std::unique_ptr<Listener> listener_;
};

} // namespace zenka::platform
