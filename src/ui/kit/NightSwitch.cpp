#include "ui/kit/NightSwitch.h"

#include "rig/RigModel.h"
#include "ui/kit/Observe.h"
#include "ui/kit/Theme.h"

namespace zenka::ui {

namespace {

constexpr double nightMargin = 600; // seconds before C2 and behind C3

} // namespace

NightSwitch::NightSwitch(rig::RigModel& rig, Theme& theme, QObject* parent)
    : QObject(parent), rig_(rig), theme_(theme) {
    observe(this, rig.renderPace().renderTick().changed(), [this](auto) { follow(); });
    observe(this, rig.site().recomputed(), [this] { follow(); });
    connect(&theme, &Theme::changed, this, [this] { follow(); });
}

void NightSwitch::follow() {
    const auto& contacts = rig_.site().contactTHours();
    const auto c2 = contacts.find("C2");
    const auto c3 = contacts.find("C3");
    const double now = rig_.transport().clockNow();
    const bool dark = theme_.nightByItself() && c2 != contacts.end() && c3 != contacts.end() &&
                      now >= c2->second * 3600 - nightMargin && now <= c3->second * 3600 + nightMargin;
    if (dark == dark_)
        return;
    dark_ = dark;
    theme_.setDarkOutside(dark);
}

} // namespace zenka::ui
