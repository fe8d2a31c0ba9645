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

/// A live run on the real adapters with simulated bodies. Its eclipse lies far ahead, so that the run is not
/// over. Needs a QCoreApplication.
class LiveRun {
public:
    /// A new run with a frame on each body again and again, from two seconds after now.
    LiveRun(const std::filesystem::path& root, const std::vector<std::string>& bodies, int frames,
            double intervalSec)
        : LiveRun(root, bodies) {
        const base::Instant first = machine.clock.now() + base::Seconds{2};
        const std::string when = base::formatTime("%Y-%m-%d %H:%M:%S", first, absl::UTCTimeZone());
        std::string script = absl::StrFormat("FOR,(INTERVALOMETER),0,%g,%d\n", intervalSec, frames);
        for (const std::string& body : bodies)
            script += "TAKEPIC,A " + when + ",+,00:00," + body + ",1/500,8.0,200,0.000,RAW,None,N,live\n";
        model.script().load(script + "ENDFOR\n", "live");
        model.recompute();
        model.fireClock().startClock();
        model.transport().armRealEclipseTiming(true);
    }

    /// What the program does when it is started again after a run was killed.
    LiveRun(const std::filesystem::path& root, const std::vector<std::string>& bodies)
        : folders(root), machine(settings, folders), model(machine.all, "9.9") {
        model.site().choose("2100-09-04", model.site().site());
        for (const std::string& body : bodies)
            model.roster().setLabel(*model.roster().addPlanningCamera("Generic PTP"), body);
    }

    platform::MemorySettings settings;
    FoldersBelow folders;
    platform::LinuxPorts machine;
    rig::RigModel model;
};

} // namespace zenka::test
