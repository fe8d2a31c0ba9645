#pragma once

#include "eclipse/Besselian.h"
#include "rig/bodies/MeasuredFloors.h"
#include "script/ZenkaScript.h"

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zenka::rig {

/// What is known of a body that fires the frames of one name of a script.
struct IssueBody {
    std::string name;            ///< its label; the script's name where no body is connected
    std::string driver = "none"; ///< as in CameraControl::backend()
    std::optional<double> measuredFloorSec;
    std::optional<double> sustainedFloorSec;
    std::optional<double> catalogFloorSec; ///< that bodies of its model are known to hold
    std::optional<MeasuredFloors::BurstDepth> burstDepth;
};

/// The sky and the bodies that a script is held against. A value, so that any thread may work with it.
struct IssueContext {
    std::shared_ptr<const eclipse::Eclipse> eclipse;
    eclipse::Observer observer;
    std::map<std::string, double> contactTHours; ///< as in CompileContext
    std::string siteLabel;
    std::vector<double> horizon; ///< as TerrainHorizon::Result::samples; empty where it is not known
    std::map<std::string, std::vector<IssueBody>> bodies; ///< by the script's name of them
};

/// What will go wrong at the eclipse: errors first, each by line. Line 0 stands for the script as a whole.
/// The captures are sorted by offset, as the compiler leaves them. Pure.
std::vector<script::ScriptDiag> computeIssues(const IssueContext& context,
                                              std::span<const script::Capture> captures,
                                              const script::CapturesByToken& byToken);

} // namespace zenka::rig
