#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/links/CameraFamily.h"
#include "rig/run/Transport.h"
#include "rig/shared/RigLog.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zenka::rig {

/// Finds the real bodies: one pass over the bus in the background, in which each body gets the best driver
/// that can really hold it. The order of the steps matters, as each could disturb what the one before has
/// claimed. No fault of a step ends the pass. Main thread.
class CameraDetector {
public:
    using Families = std::vector<std::shared_ptr<CameraFamily>>;

    CameraDetector(const ports::Ports& ports, RigLog& log, CameraRoster& roster, const Transport& transport,
                   Families families);
    ~CameraDetector();

    /// Begins a pass. Refused while one runs, and in a run that has real bodies in its hands.
    void detectCameras();
    /// Ends a pass after the step that it is in; the list stays as it is.
    void cancelDetect();
    /// The bodies are real ones from now on.
    void useRealCameras();

    const base::Published<bool>& detecting() const { return detecting_; }
    /// What the pass does now, in words; empty when none runs.
    const base::Published<std::string>& step() const { return step_; }

    /// Why a Sony of the last pass is driven by the universal driver; empty when none is, or nobody can say.
    const base::Published<std::string>& sonyFallbackReason() const { return sonyFallbackReason_; }

    const Families& families() const { return families_; }
    std::shared_ptr<CameraFamily> familyOf(const std::string& backend) const;

    /// The USB hubs of the bodies by serial number, as the last pass saw them.
    const std::map<std::string, std::string>& hubs() const { return hubs_; }

    /// A pass begins: what was known of bodies that are down is void.
    sigc::signal<void()>& passBegan() { return passBegan_; }
    /// A body of before has got another driver: from one id to another.
    sigc::signal<void(const std::string&, const std::string&)>& carried() { return carried_; }
    /// The roster holds what the pass has found.
    sigc::signal<void()>& published() { return published_; }

private:
    struct Pass;

    void publish(const Pass& pass);
    void tellWhatWasFound(const std::vector<CameraRoster::Camera>& found, bool sonyOnFallback);
    void endPass();

    const ports::Ports& ports_;
    RigLog& log_;
    CameraRoster& roster_;
    const Transport& transport_;
    const Families families_;
    std::shared_ptr<ports::WorkQueue> queue_;
    std::shared_ptr<Pass> pass_;
    std::map<std::string, std::string> hubs_;
    base::Published<bool> detecting_{false};
    base::Published<std::string> step_;
    base::Published<std::string> sonyFallbackReason_;
    sigc::signal<void()> passBegan_;
    sigc::signal<void(const std::string&, const std::string&)> carried_;
    sigc::signal<void()> published_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
