#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"

#include <optional>
#include <string>
#include <vector>

namespace zenka::rig {

/// The voices that are installed, and the one that speaks. Main thread.
class VoiceChoice {
public:
    explicit VoiceChoice(const ports::Ports& ports) : ports_(ports) {}

    /// Asks the engine for its voices, if that was not done.
    void learnVoices();
    /// Best quality first, then by name; empty until they have come.
    const base::Published<std::vector<ports::Voice>>& availableVoices() const { return voices_; }

    /// The best one of the user's language, of all where there is none; nothing while none is known.
    std::optional<ports::Voice> bestVoice() const;
    /// The id of the user's choice, if that is installed, else of the best one; empty for the engine's own.
    std::string currentVoice() const;
    /// The id that the user has chosen; empty for none.
    std::string chosen() const;
    void choose(const std::string& id);

private:
    const ports::Ports& ports_;
    base::Published<std::vector<ports::Voice>> voices_;
    bool asked_ = false;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
