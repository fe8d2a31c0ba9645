#include "ui/dashboard/WarningsView.h"

#include "rig/RigModel.h"
#include "rig/shared/PlatformWords.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <algorithm>

namespace zenka::ui {

namespace {

const std::string theComputer{rig::platformWords::computer};

} // namespace

WarningsView::WarningsView(rig::RigModel& rig, QObject* parent) : QObject(parent), rig_(rig) {
    const auto look = [this](const auto&) { collect(); };
    observe(this, rig.batteries().macBatteryEmergency().changed(), look);
    observe(this, rig.batteries().macBatteryLow().changed(), look);
    observe(this, rig.batteries().criticalBatteryName().changed(), look);
    observe(this, rig.batteries().lowBatteryNames().changed(), look);
    observe(this, rig.health().showThermalWarning().changed(), look);
    observe(this, rig.audio().showMutedModal().changed(), look);
    collect();
}

void WarningsView::collect() {
    const rig::BatteryWatch& batteries = rig_.batteries();
    std::vector<Warning> all;
    if (batteries.macBatteryEmergency().get())
        all.push_back({.key = "computer critical",
                       .text = "The " + theComputer + "'s battery is about to run out",
                       .hint = "Plug into wall power NOW or the whole rig stops.",
                       .critical = true});
    if (const auto& name = batteries.criticalBatteryName().get())
        all.push_back({.key = "critical " + *name,
                       .text = *name + ": battery critically low",
                       .hint = "Swap it now. Zenka takes the body back by itself.",
                       .critical = true});
    if (rig_.health().showThermalWarning().get())
        all.push_back({.key = "heat",
                       .text = "This " + theComputer + " is overheating",
                       .hint = "Move it into the shade and give it airflow. Firing goes on.",
                       .critical = true});
    if (rig_.audio().showMutedModal().get())
        all.push_back(
            {.key = "muted",
             .text = "The sound is muted",
             .hint = "You won't hear voice or battery cues. This goes when the sound is on again."});
    if (batteries.macBatteryLow().get() && !batteries.macBatteryEmergency().get())
        all.push_back({.key = "computer low",
                       .text = "The " + theComputer + " runs low on battery",
                       .hint = "Plug in soon. This is not enough to finish a full eclipse run."});
    for (const std::string& name : batteries.lowBatteryNames().get()) {
        if (batteries.criticalBatteryName().get() != name)
            all.push_back({.key = "low " + name,
                           .text = name + ": battery low",
                           .hint = "Swap soon. Zenka takes the body back by itself."});
    }
    std::erase_if(seen_,
                  [&](const std::string& key) { return !std::ranges::count(all, key, &Warning::key); });
    std::erase_if(all, [&](const Warning& warning) { return seen_.contains(warning.key); });
    standing_ = std::move(all);
    Q_EMIT changed();
}

QString WarningsView::text() const {
    if (standing_.empty())
        return {};
    const Warning& first = standing_.front();
    const auto others = standing_.size() - 1;
    return QStringLiteral("%1 %2%3").arg(first.critical ? QStringLiteral("■") : QStringLiteral("▲"),
                                         qt(first.text),
                                         others > 0 ? QStringLiteral("  (+%1 more)").arg(others) : QString());
}

QString WarningsView::hint() const {
    return standing_.empty() ? QString() : qt(standing_.front().hint);
}

bool WarningsView::critical() const {
    return !standing_.empty() && standing_.front().critical;
}

void WarningsView::acknowledge() {
    if (standing_.empty())
        return;
    const std::string key = standing_.front().key;
    seen_.insert(key);
    if (key == "heat")
        rig_.health().dismissThermalWarning();
    else if (key == "muted")
        rig_.audio().dismiss();
    collect();
}

} // namespace zenka::ui
