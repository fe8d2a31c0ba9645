#pragma once

#include "base/CivilTime.h"
#include "base/Text.h"
#include "platform/LinuxPorts.h"
#include "platform/virtual/VirtualMachine.h"
#include "rig/RigModel.h"
#include "support/TestFolders.h"

#include <absl/strings/str_format.h>

#include <filesystem>
#include <string>
#include <vector>

namespace zenka::test {

/// A live run on the real adapters with simulated bodies: a frame on each body again and again, from a
/// second after now. Needs a QCoreApplication.
class LiveRun {
public:
    LiveRun(const std::filesystem::path& root, const std::vector<std::string>& bodies, int frames,
            double intervalSec)
        : folders(root), machine(settings, folders), model(machine.all, "9.9") {
        const base::Instant first = machine.clock.now() + base::Seconds{2};
        const std::string when = base::formatTime("%Y-%m-%d %H:%M:%S", first, absl::UTCTimeZone());
        std::string script = absl::StrFormat("FOR,(INTERVALOMETER),0,%g,%d\n", intervalSec, frames);
        for (const std::string& body : bodies) {
            model.roster().setLabel(*model.roster().addPlanningCamera("Generic PTP"), body);
            script += "TAKEPIC,A " + when + ",+,00:00," + body + ",1/500,8.0,200,0.000,RAW,None,N,live\n";
        }
        model.script().load(script + "ENDFOR\n", "live");
        model.recompute();
        model.fireClock().startClock();
        model.transport().armRealEclipseTiming(true);
    }

    platform::MemorySettings settings;
    FoldersBelow folders;
    platform::LinuxPorts machine;
    rig::RigModel model;
};

} // namespace zenka::test
