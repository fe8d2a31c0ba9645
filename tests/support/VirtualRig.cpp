#include "support/VirtualRig.h"

#include "base/CivilTime.h"
#include "base/Text.h"
#include "eclipse/Catalog.h"
#include "support/PortsBut.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace zenka::test {

namespace {

base::Instant anHourBefore() {
    return eclipse::Catalog::eclipse("2026-08-12").baseTDT() - base::Seconds{3600};
}

} // namespace

std::string MemoryFiles::only(const std::string& ending) const {
    EXPECT_EQ(count(ending), 1) << "files ending in " << ending;
    for (const auto& [path, content] : contents) {
        if (path.string().ends_with(ending))
            return content;
    }
    return {};
}

int MemoryFiles::count(const std::string& ending) const {
    return static_cast<int>(std::ranges::count_if(
        contents, [&](const auto& file) { return file.first.string().ends_with(ending); }));
}

VirtualRig::VirtualRig(const rig::CameraDetector::Families& families)
    : VirtualRig([&families](platform::VirtualPorts&) { return families; }) {
}

VirtualRig::VirtualRig(const MakeFamilies& make)
    : machine(anHourBefore(), folders, files, places, http), model(parts(), "9.9", make(machine)) {
    model.log().lineAdded().connect([this](const std::string& line) { lines.push_back(line); });
    model.recompute();
    model.fireClock().startClock();
}

ports::Ports VirtualRig::parts() {
    return portsBut(machine.all, loop, disk, images, pixels, volumes, children, serialPorts, sensors, speech,
                    sounds, audio);
}

void VirtualRig::load(const std::string& script) {
    model.script().load(script, "test");
    model.script().compile();
}

std::shared_ptr<ScriptedCamera> VirtualRig::addBody(const std::string& label) {
    auto camera = std::make_shared<ScriptedCamera>("id-" + label);
    model.roster().add(camera);
    model.roster().setLabelOfSerial(camera->serial(), label);
    return camera;
}

void VirtualRig::playFrom(double clock) {
    model.transport().scrubTo(clock);
    model.transport().togglePlay();
}

std::string VirtualRig::frameAt(double offset, const std::string& camera) {
    // Offsets from the maximum, which every site has.
    const double fromMaximum = offset - model.site().contactTHours().at("MAX") * 3600;
    return "TAKEPIC,MAX," + std::string(fromMaximum < 0 ? "-," : "+,") +
           base::plainNumber(std::abs(fromMaximum)) + "," + camera +
           ",1/500,8.0,200,0.000,RAW,None,N,frame\n";
}

int VirtualRig::countLines(const std::string& part) const {
    return static_cast<int>(std::ranges::count_if(
        lines, [&](const std::string& line) { return line.find(part) != std::string::npos; }));
}

std::vector<std::vector<std::string>> VirtualRig::rows() const {
    std::vector<std::vector<std::string>> rows;
    const std::string csv = files.only(".csv");
    for (const std::string_view line : base::splitPieces(csv, '\n')) {
        if (line.starts_with('#') || line.starts_with("scheduled_local"))
            continue;
        rows.emplace_back();
        for (const std::string_view field : base::split(line, ','))
            rows.back().emplace_back(field);
    }
    return rows;
}

} // namespace zenka::test
