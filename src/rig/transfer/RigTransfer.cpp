#include "rig/transfer/RigTransfer.h"

#include "base/Text.h"
#include "eclipse/Catalog.h"
#include "script/ZenkaScript.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

constexpr char noImportLive[] = "In a live run nothing is imported: what the run began with stays.";

/// What a script of the rig is compiled for: the rig's own site where it has one.
CompileSite siteOf(const RigContents& rig, CompileSite here) {
    if (!rig.site)
        return here;
    const Site& site = rig.site->record.site;
    auto eclipse = std::make_shared<const eclipse::Eclipse>(eclipse::Catalog::eclipse(rig.site->eclipseId));
    const eclipse::Observer observer{.lat = site.lat, .lon = site.lon, .elev = site.elev};
    auto contacts = script::contactTHours(eclipse->localCircumstances(observer));
    return {std::move(eclipse), observer, std::move(contacts), site.tzId};
}

RigTransfer::Found readRig(ports::Files& files, const std::string& path, const CompileSite& here) {
    RigTransfer::Found found{.name = ScriptFiles::nameOf(path), .reading = {}};
    const auto refused = [&](std::string_view why) {
        found.reading.fault = absl::StrFormat("\"%s\" %s", found.name, why);
        return found;
    };
    const auto bytes = files.readBeginning(path, RigTransfer::mostBytes + 1);
    if (!bytes)
        return refused("cannot be read. See that it is still there and that you may read it.");
    if (bytes->size() > RigTransfer::mostBytes)
        return refused("is too long for a rig. Choose a file that Export Rig… has written.");
    found.reading = rigFrom(*bytes);
    if (!found.reading.contents)
        return refused(found.reading.fault);
    const RigContents& rig = *found.reading.contents;
    if (rig.script)
        found.frames =
            script::ZenkaScript::compile(rig.script->text, siteOf(rig, here).context()).captures.size();
    return found;
}

} // namespace

RigTransfer::RigTransfer(const ports::Ports& ports, RigLog& log, const Desks& desks, std::string appVersion)
    : ports_(ports), log_(log), desks_(desks), framings_(ports.settings, desks.library),
      appVersion_(std::move(appVersion)), queue_(ports.queues.serial("zenka.rigfile")) {
}

RigContents RigTransfer::gather() const {
    const SiteDesk& desk = desks_.site;
    RigContents rig{.appVersion = appVersion_,
                    .exported = ports_.clock.now(),
                    .site = RigContents::SiteInUse{.eclipseId = desk.eclipseId(),
                                                   .record = {.site = desk.site(),
                                                              .confirmed = desk.locationConfirmed().get()}},
                    .savedSites = desks_.sites.savedSites().get(),
                    .script = {},
                    .bodies = desks_.library.entries(),
                    .framings = framings_.underLabels(),
                    .rules = desks_.rules.all(),
                    .floors = desks_.floors.all(),
                    .horizons = {}};
    const std::string& text = desks_.script.scriptText().get();
    if (!base::trimmed(text).empty())
        rig.script = {.name = desks_.script.currentScriptName().get(), .text = text};
    const auto addHorizon = [&](double lat, double lon) {
        const KnownHorizon* horizon = desks_.horizons.at(lat, lon);
        if (horizon && std::ranges::find(rig.horizons, *horizon) == rig.horizons.end())
            rig.horizons.push_back(*horizon);
    };
    addHorizon(desk.site().lat, desk.site().lon);
    for (const SavedSite& site : rig.savedSites)
        addHorizon(site.lat, site.lon);
    return rig;
}

std::string RigTransfer::summary(const RigContents& rig, std::size_t frames) {
    return base::joined(rigPartCounts(rig, frames));
}

void RigTransfer::exportTo(const std::string& path, std::function<void(const std::string&)> done) {
    const auto written = [this, path, done = std::move(done)](bool ok) {
        const std::string name = ScriptFiles::nameOf(path);
        if (!ok)
            return done(absl::StrFormat("\"%s\" could not be written: the folder may be full or closed to "
                                        "you. Choose another folder.",
                                        name));
        log_.pushLog("Rig exported to \"" + name + "\".");
        done({});
    };
    queue_->post(
        [&files = ports_.files, &loop = ports_.loop, path, rig = gather(), done = lifeline_.guard(written)] {
            const bool ok = files.writeAtomically(path, toJson(rig));
            loop.post([done, ok] { done(ok); });
        });
}

void RigTransfer::read(const std::string& path, std::function<void(const Found&)> done) {
    queue_->post([&files = ports_.files, &loop = ports_.loop, path, here = desks_.site.compileSite(),
                  done = lifeline_.guard(std::move(done))] {
        const auto found = std::make_shared<const Found>(readRig(files, path, here));
        loop.post([done, found] { done(*found); });
    });
}

std::vector<RigPartWords> RigTransfer::describe(const RigContents& rig, std::size_t frames) const {
    return rigPartWords(rig, frames, gather(), desks_.script.edited().get());
}

std::string RigTransfer::importFault() const {
    return desks_.transport.live() ? noImportLive : std::string();
}

bool RigTransfer::apply(const Found& found, const std::set<RigPart>& parts) {
    if (!importFault().empty() || !found.reading.contents)
        return false;
    const RigContents& rig = *found.reading.contents;
    RigContents taken;
    const auto wants = [&](RigPart part) { return parts.contains(part); };
    if (wants(RigPart::savedSites))
        desks_.sites.merge(taken.savedSites = rig.savedSites);
    if (wants(RigPart::bodies)) {
        desks_.library.merge(taken.bodies = rig.bodies);
        framings_.merge(taken.framings = rig.framings);
    }
    if (wants(RigPart::rules))
        desks_.rules.merge(taken.rules = rig.rules);
    if (wants(RigPart::floors))
        desks_.floors.merge(taken.floors = rig.floors);
    if (wants(RigPart::horizons))
        desks_.horizons.merge(taken.horizons = rig.horizons);
    if (wants(RigPart::script) && rig.script) {
        taken.script = rig.script;
        desks_.script.takeFromElsewhere(rig.script->text, rig.script->name);
    }
    if (wants(RigPart::site) && rig.site) {
        taken.site = rig.site;
        desks_.site.take(rig.site->eclipseId, rig.site->record);
        desks_.site.recompute(); // which compiles the script, too
    } else if (taken.script) {
        desks_.script.compile();
    }
    log_.pushLog("Rig imported from \"" + found.name + "\": " + summary(taken, found.frames) + ".");
    for (const std::string& sentence : found.reading.leftOut)
        log_.pushLog("⚠️ \"" + found.name + "\": " + sentence);
    return true;
}

} // namespace zenka::rig
