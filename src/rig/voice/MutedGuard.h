#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/shared/RigLog.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace zenka::rig {

/// Notices that nobody would hear what is spoken. Main thread.
class MutedGuard {
public:
    /// Whether anything is to be heard at all.
    using VoiceWanted = std::function<bool()>;

    MutedGuard(const ports::Ports& ports, RigLog& log, VoiceWanted voiceWanted)
        : ports_(ports), log_(log), voiceWanted_(std::move(voiceWanted)) {}

    /// Reads how the output is set.
    void refreshAudioOutput();

    const base::Published<bool>& systemMuted() const { return systemMuted_; }
    /// 0 to 1; absent where it is not known.
    const base::Published<std::optional<float>>& systemVolume() const { return systemVolume_; }

    /// The operator is to be told. It goes by itself when the output is heard again.
    const base::Published<bool>& showMutedModal() const { return showMutedModal_; }
    /// The operator knows, until it has been heard again.
    void dismiss();

private:
    void showModal(bool show);
    void startMutedModalWatch();

    const ports::Ports& ports_;
    RigLog& log_;
    const VoiceWanted voiceWanted_;
    base::Published<bool> systemMuted_{false};
    base::Published<std::optional<float>> systemVolume_;
    base::Published<bool> showMutedModal_{false};
    bool mutedModalDismissed_ = false;
    ports::MainLoop::TimerId mutedModalWatch_ = ports::MainLoop::TimerId::none;
    std::string told_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
