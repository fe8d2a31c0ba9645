#pragma once

#include "platform/virtual/VirtualPorts.h"
#include "rig/RigModel.h"
#include "support/FakePlaces.h"
#include "support/FaultyFiles.h"
#include "support/MemoryFiles.h"
#include "support/ScriptedCamera.h"
#include "support/ScriptedCards.h"
#include "support/ScriptedChildren.h"
#include "support/ScriptedHttp.h"
#include "support/ScriptedSerial.h"
#include "support/ScriptedVoice.h"
#include "support/ToldPixels.h"
#include "support/ToldSensors.h"
#include "support/WatchedLoop.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zenka::test {

/// A whole rig on a virtual machine with a disk in memory. The wall clock starts an hour before the
/// reference instant of the eclipse, so that a live run can be armed.
class VirtualRig {
public:
    VirtualRig() : VirtualRig(rig::CameraDetector::Families{}) {}
    /// With families that lead to real bodies.
    explicit VirtualRig(const rig::CameraDetector::Families& families);
    /// With families that stand on the virtual machine themselves.
    using MakeFamilies = std::function<rig::CameraDetector::Families(platform::VirtualPorts&)>;
    explicit VirtualRig(const MakeFamilies& make);

    MemoryFiles files;
    FaultyFiles disk{files}; ///< what the rig has of them; faultless as long as a test wants no fault
    MemoryFolders folders;
    FakePlaces places;
    ScriptedHttp http;
    ToldImages images;
    ToldPixels pixels;
    ScriptedVolumes volumes;
    platform::VirtualPorts machine;
    WatchedLoop loop{machine.loop}; ///< the one that the rig has
    ScriptedChildren children{machine.time};
    ScriptedSerial serialPorts{machine.time};
    ToldSensors sensors;
    ScriptedSpeech speech{machine.time, machine.loop};
    HeardSounds sounds{machine.time};
    ToldAudio audio;
    rig::RigModel model;

    /// Every line of the operator's log, oldest first.
    std::vector<std::string> lines;

    /// Compiles a script in the place of the one before.
    void load(const std::string& script);

    std::shared_ptr<ScriptedCamera> addBody(const std::string& label);

    void run(double seconds) { machine.time.runFor(base::Seconds{seconds}); }

    /// Plays from a little before a clock value. The tick rate is that of a run from then on.
    void playFrom(double clock);

    /// A line of script that fires at a clock value.
    std::string frameAt(double offset, const std::string& camera = "CAM1");

    int countLines(const std::string& part) const;
    bool logged(const std::string& part) const { return countLines(part) > 0; }
    /// The rows of the only CSV, split into fields (no test script has a comma in a field).
    std::vector<std::vector<std::string>> rows() const;

private:
    ports::Ports parts();
};

} // namespace zenka::test
