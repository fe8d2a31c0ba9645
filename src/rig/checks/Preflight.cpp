#include "rig/checks/Preflight.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

Preflight::Preflight(const ports::Ports& ports, RigLog& log, const PreflightSources& sources,
                     TimeSources& time, ScriptValidator& validator, BodyModes& modes)
    : ports_(ports), log_(log), sources_(sources), time_(time), validator_(validator), modes_(modes) {
}

void Preflight::runPreflight(Action then) {
    time_.checkClockSkew();
    validator_.look(lifeline_.guard([this, then = std::move(then)] {
        const auto stops = [](const PreflightCheck& check) {
            return check.holdsArming && check.status != PreflightStatus::ok;
        };
        if (sources_.site.locationConfirmed().get() && std::ranges::none_of(checks(), stops))
            return then();
        preflightAction_ = then;
        show();
    }));
}

void Preflight::openPreflight() {
    preflightAction_ = nullptr;
    recheck();
    show();
}

void Preflight::show() {
    const Site& site = sources_.site.site();
    sitePlace_.set(ports_.places.placeAt(site.lat, site.lon).value_or(""));
    showPreflight_.set(true);
}

void Preflight::recheck() {
    time_.checkClockSkew();
    modes_.recheckModes();
    validator_.look(lifeline_.guard([this] { rechecked_.emit(); }));
}

void Preflight::proceedPreflight() {
    if (!sources_.site.locationConfirmed().get()) {
        log_.pushLog(
            "⛔️ Cannot arm: the observing location is still the shipped default. Open Location and "
            "set where you are standing.");
        cancelPreflight();
        locationWanted_.emit();
        return;
    }
    const Action action = std::exchange(preflightAction_, nullptr);
    showPreflight_.set(false);
    if (action)
        action();
}

void Preflight::cancelPreflight() {
    showPreflight_.set(false);
    preflightAction_ = nullptr;
}

} // namespace zenka::rig
