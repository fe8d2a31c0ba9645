#include "rig/checks/ChecklistBodies.h"

#include "base/Text.h"
#include "cameras/SensorTable.h"
#include "eclipse/Framing.h"
#include "exposure/ExposureScales.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

using script::Capture;

/// A body as the list has it: one that is here, one that is remembered, or a name of the script alone.
struct ListedBody {
    std::string label;
    std::string model;
    std::string serial;
    std::string lens;
    std::string remark;
    CameraRoster::Camera camera; ///< null for one that is not here
    std::vector<std::string> tokens;
};

std::vector<ListedBody> listedBodies(const ChecklistSources& rig) {
    std::vector<ListedBody> bodies;
    const auto& tokens = rig.script.cameraTokens();
    const auto lensOf = [&rig](const std::string& serial) {
        const auto entry = rig.library.find(serial);
        return entry ? entry->lens.value_or("") : std::string();
    };
    for (const auto& camera : rig.roster.cameras()) {
        ListedBody body{.label = rig.roster.labelFor(*camera),
                        .model = CameraRoster::bareModel(camera->model()),
                        .serial = camera->serial(),
                        .lens = lensOf(camera->serial()),
                        .remark = camera->isReal() ? "" : "simulated",
                        .camera = camera};
        std::ranges::copy_if(tokens, std::back_inserter(body.tokens), [&](const std::string& token) {
            return rig.roster.cameraMatches(*camera, token);
        });
        bodies.push_back(std::move(body));
    }
    const auto absent = rig.library.absentLibraryBodies();
    for (const auto& missing : rig.roster.missingCameras(tokens)) {
        const auto entry = std::ranges::find_if(
            absent, [&](const auto& each) { return base::equalIgnoringCase(each.label, missing.token); });
        ListedBody body{.label = missing.token, .remark = "no body yet", .tokens = {missing.token}};
        if (entry != absent.end()) {
            body.model = CameraRoster::bareModel(entry->model);
            body.serial = entry->serial;
            body.lens = entry->lens.value_or("");
            body.remark = "not connected when this was made";
        }
        bodies.push_back(std::move(body));
    }
    return bodies;
}

std::vector<const Capture*> framesOf(const ScriptDesk& script, const std::vector<std::string>& tokens) {
    std::vector<const Capture*> frames;
    for (const Capture& capture : script.captures()) {
        if (std::ranges::find(tokens, capture.camera) != tokens.end())
            frames.push_back(&capture);
    }
    return frames;
}

/// "1/2000 to 2s", or one value alone; empty where the script sets none.
template <typename Value, typename Label>
std::string range(const std::vector<const Capture*>& frames, Value value, Label label) {
    std::optional<double> least;
    std::optional<double> most;
    for (const Capture* frame : frames) {
        const double each = value(*frame);
        if (each <= 0)
            continue;
        least = std::min(least.value_or(each), each);
        most = std::max(most.value_or(each), each);
    }
    if (!least || !most)
        return {};
    return *least == *most ? label(*least) : label(*least) + " to " + label(*most);
}

std::string exposuresLine(const std::vector<const Capture*>& frames) {
    std::vector<std::string> words;
    const auto add = [&words](std::string text) {
        if (!text.empty())
            words.push_back(std::move(text));
    };
    add(range(
        frames, [](const Capture& frame) { return frame.shutterSec; },
        [](double seconds) { return exposure::shutterLabel(seconds); }));
    add(range(
        frames, [](const Capture& frame) { return frame.aperture; },
        [](double number) { return absl::StrFormat("f/%g", number); }));
    add(range(
        frames, [](const Capture& frame) { return static_cast<double>(frame.iso); },
        [](double iso) { return absl::StrFormat("ISO %.0f", iso); }));
    return words.empty() ? std::string() : "Exposures " + base::joined(words, " · ");
}

/// The closest that two frames follow each other, but not at one instant.
std::optional<double> tightest(const std::vector<const Capture*>& frames) {
    std::optional<double> gap;
    for (std::size_t i = 1; i < frames.size(); ++i) {
        const double each = frames[i]->offsetSec - frames[i - 1]->offsetSec;
        if (each > 0)
            gap = std::min(gap.value_or(each), each);
    }
    return gap;
}

std::string floorWords(const ChecklistSources& rig, const ListedBody& body) {
    if (body.camera) // one that is simulated may have no limit
        return rig.cadence.bodyFloorSec(*body.camera) > 0 ? rig.cadence.floorLabel(*body.camera) : "";
    const auto floor = rig.floors.measuredFloor(body.model);
    return floor ? fmtSecs(*floor) + " measured" : std::string();
}

std::string framingLine(const ChecklistSources& rig, const ListedBody& body) {
    const auto framing = rig.framings.find(body.serial, body.label);
    const auto focal = framing ? framing->focalMm : std::nullopt;
    if (!framing || !focal)
        return {};
    namespace Framing = eclipse::Framing;
    const auto* named = cameras::SensorTable::named(framing->sensor);
    const auto* bodys = cameras::SensorTable::forModel(body.model);
    const cameras::Sensor sensor = framing->own ? *framing->own
                                   : named      ? named->sensor
                                   : bodys      ? bodys->sensor
                                                : cameras::SensorTable::formats().front().sensor;
    const auto maximum = rig.site.contactTHours().find("MAX");
    const double hours = maximum == rig.site.contactTHours().end() ? 0 : maximum->second;
    const Framing::Facts facts =
        Framing::facts({.widthMm = sensor.widthMm,
                        .heightMm = sensor.heightMm,
                        .focalMm = *focal,
                        .converter = framing->converter},
                       Framing::sunRadiusDeg(rig.site.eclipse(), hours, rig.site.observer()));
    return absl::StrFormat("Framing %g mm%s%s, turned %g°: %.1f solar radii along the width, %.1f along the "
                           "height",
                           *focal,
                           framing->converter == 1 ? "" : absl::StrFormat(" × %g", framing->converter),
                           framing->tracking ? ", on a mount that follows" : ", fixed", framing->rotationDeg,
                           facts.radiiAlongWidth, facts.radiiAlongHeight);
}

base::PrintedSection sectionOf(const ChecklistSources& rig, const ListedBody& body) {
    base::PrintedSection section{.title = body.label};
    for (const std::string& more :
         {body.model == body.label ? std::string() : body.model,
          body.serial.empty() ? std::string() : "no. " + body.serial, body.lens, body.remark})
        section.title += more.empty() ? "" : " · " + more;
    const auto frames = framesOf(rig.script, body.tokens);
    std::string count = base::counted(std::ssize(frames), "frame");
    if (const auto gap = tightest(frames)) {
        const std::string floor = floorWords(rig, body);
        count += ", tightest " + fmtSecs(*gap) + (floor.empty() ? "" : ", body " + floor);
    }
    for (const std::string& line : {count, exposuresLine(frames), framingLine(rig, body)}) {
        if (!line.empty())
            section.lines.push_back(line);
    }
    section.boxes = {"battery",           "card formatted",    "M",
                     "MF, focus taped",   "drive single",      "Auto-ISO off",
                     "stabilisation off", "cap off, filter on"};
    return section;
}

} // namespace

std::vector<base::PrintedSection> checklistBodies(const ChecklistSources& rig) {
    std::vector<base::PrintedSection> sections;
    for (const ListedBody& body : listedBodies(rig))
        sections.push_back(sectionOf(rig, body));
    return sections;
}

} // namespace zenka::rig
