#include "platform/PowerProfiles.h"

#include <QDBusVariant>

#include <array>
#include <utility>

namespace zenka::platform {

namespace {

constexpr double patienceAfterSilence = 300; // seconds

struct Answer {
    bool silent = false; ///< none came
    std::optional<std::string> profile;
};

Answer ask(Bus& bus, const BusObject& daemon) {
    const BusObject properties{.service = daemon.service,
                               .path = daemon.path,
                               .interface = QStringLiteral("org.freedesktop.DBus.Properties")};
    const QDBusMessage reply =
        bus.call(properties, QStringLiteral("Get"), {daemon.interface, QStringLiteral("ActiveProfile")});
    if (reply.type() == QDBusMessage::ErrorMessage) {
        const QDBusError::ErrorType error = QDBusError(reply).type();
        return {.silent = error == QDBusError::NoReply || error == QDBusError::Timeout ||
                          error == QDBusError::TimedOut || error == QDBusError::Disconnected,
                .profile = {}};
    }
    const QVariant value = reply.arguments().value(0).value<QDBusVariant>().variant();
    if (value.userType() != QMetaType::QString)
        return {};
    return {.silent = false, .profile = value.toString().toStdString()};
}

} // namespace

PowerProfiles::PowerProfiles(const ports::Clock& clock, std::string address)
    : clock_(clock), address_(std::move(address)) {
}

std::optional<bool> PowerProfiles::savesPower(const SystemTree& tree) {
    if (const auto profile = activeProfile())
        return *profile == "power-saver";
    if (const auto profile = tree.text("sys/firmware/acpi/platform_profile"); profile && !profile->empty())
        return *profile == "low-power";
    return std::nullopt;
}

std::optional<std::string> PowerProfiles::activeProfile() {
    if (clock_.uptimeSeconds() < askAgainAt_)
        return std::nullopt;
    if (!bus_ || !bus_->connected())
        bus_ = std::make_unique<Bus>(Bus::Kind::system, address_);
    bool silent = !bus_->connected();
    // The name of today, and the one before version 0.20.
    const std::array<BusObject, 2> daemons{
        BusObject{.service = QStringLiteral("org.freedesktop.UPower.PowerProfiles"),
                  .path = QStringLiteral("/org/freedesktop/UPower/PowerProfiles"),
                  .interface = QStringLiteral("org.freedesktop.UPower.PowerProfiles")},
        BusObject{.service = QStringLiteral("net.hadess.PowerProfiles"),
                  .path = QStringLiteral("/net/hadess/PowerProfiles"),
                  .interface = QStringLiteral("net.hadess.PowerProfiles")}};
    for (const BusObject& daemon : daemons) {
        if (silent)
            break;
        const Answer answer = ask(*bus_, daemon);
        if (answer.profile)
            return answer.profile;
        silent = answer.silent;
    }
    if (silent) {
        bus_.reset();
        askAgainAt_ = clock_.uptimeSeconds() + patienceAfterSilence;
    }
    return std::nullopt;
}

} // namespace zenka::platform
