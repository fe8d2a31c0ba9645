#include "ui/dashboard/HealthView.h"

#include "rig/RigModel.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <absl/strings/str_format.h>

#include <cmath>

namespace zenka::ui {

namespace {

using ports::ThermalState;
using Severity = rig::SystemHealth::Severity;

/// What gives the chip its severity, in the order in which it matters.
std::string reasonOf(const rig::SystemHealth& health) {
    const bool onBattery = health.hasInternalBattery && !health.onACPower;
    const auto battery = [&] { return absl::StrFormat("battery %d %%", *health.macBatteryPercent); };
    if (health.freeDiskGB && *health.freeDiskGB < 1)
        return absl::StrFormat("disk %.1f GB", *health.freeDiskGB);
    if (onBattery && health.macBatteryPercent && *health.macBatteryPercent < 21)
        return battery();
    if (health.thermal && *health.thermal >= ThermalState::serious)
        return "heat " + rig::wordOf(*health.thermal);
    if (onBattery && health.macBatteryPercent)
        return battery();
    if (health.freeDiskGB && *health.freeDiskGB < 5)
        return absl::StrFormat("disk %.1f GB", *health.freeDiskGB);
    if (health.thermal == ThermalState::fair)
        return "warm";
    if (health.lowPowerMode)
        return "power saver";
    if (health.cpuUsagePercent >= 90.0)
        return absl::StrFormat("CPU %.0f %%", health.cpuUsagePercent.value_or(0));
    return "OK";
}

struct Told {
    QString symbol;
    QString word;
};

Told toldAs(Severity severity) {
    switch (severity) {
    case Severity::good: return {QStringLiteral("✓"), QStringLiteral("good")};
    case Severity::warning: return {QStringLiteral("▲"), QStringLiteral("warning")};
    case Severity::critical: return {QStringLiteral("■"), QStringLiteral("critical")};
    }
    return {};
}

QVariantMap row(const char* name, const std::string& value) {
    return {{QStringLiteral("name"), QString::fromUtf8(name)},
            {QStringLiteral("value"), value.empty() ? QStringLiteral("not told") : qt(value)}};
}

} // namespace

HealthView::HealthView(rig::RigModel& rig, QObject* parent) : QObject(parent), rig_(rig) {
    observe(this, rig.health().health().changed(), [this](const auto&) { Q_EMIT changed(); });
    observe(this, rig.audio().systemMuted().changed(), [this](bool) { Q_EMIT changed(); });
    observe(this, rig.audio().systemVolume().changed(), [this](const auto&) { Q_EMIT changed(); });
}

QString HealthView::text() const {
    return symbol() + u' ' + qt(reasonOf(rig_.health().health().get()));
}

QString HealthView::brief() const {
    const QString reason = qt(reasonOf(rig_.health().health().get()));
    return severity() == QLatin1String("good")
               ? symbol()
               : symbol() + u' ' + (reason.startsWith(QLatin1String("battery ")) ? reason.mid(8) : reason);
}

QString HealthView::symbol() const {
    return toldAs(rig_.health().health().get().worst()).symbol;
}

QString HealthView::severity() const {
    return toldAs(rig_.health().health().get().worst()).word;
}

QVariantList HealthView::rows() const {
    const rig::SystemHealth& health = rig_.health().health().get();
    const auto percent = [](const std::optional<double>& value) {
        return value ? absl::StrFormat("%.0f %%", *value) : std::string();
    };
    std::string power = health.onACPower ? "wall power" : "battery";
    if (health.macBatteryPercent)
        power += absl::StrFormat(", %d %%", *health.macBatteryPercent);
    std::string heat = health.thermal ? rig::wordOf(*health.thermal) : "";
    if (health.socTempC)
        heat += absl::StrFormat("%s%.0f °C", heat.empty() ? "" : ", ", *health.socTempC);
    const auto volume = rig_.audio().systemVolume().get();
    std::string sound = rig_.audio().systemMuted().get() ? "MUTED" : "";
    if (volume)
        sound += absl::StrFormat("%s%.0f %%", sound.empty() ? "" : ", ", std::round(*volume * 100));
    return {row("Power", power),
            row("Power saver", health.lowPowerMode ? "on" : "off"),
            row("Heat", heat),
            row("Processor", percent(health.cpuUsagePercent)),
            row("Free disk", health.freeDiskGB ? absl::StrFormat("%.1f GB", *health.freeDiskGB) : ""),
            row("Sound", sound)};
}

} // namespace zenka::ui
