#include "platform/Bus.h"

#include "platform/BusHandshake.h"

#include <QDBusVariant>

#include <atomic>
#include <chrono>
#include <cstdlib>

namespace zenka::platform {

namespace {

constexpr int limitMs = 5000;

QString freshName() {
    static std::atomic<int> count{0};
    return QStringLiteral("zenka-%1").arg(++count);
}

/// Where the bus of a kind is. No bus is started for want of one.
std::string usualAddress(Bus::Kind kind) {
    const bool system = kind == Bus::Kind::system;
    if (const char* given = std::getenv(system ? "DBUS_SYSTEM_BUS_ADDRESS" : "DBUS_SESSION_BUS_ADDRESS"))
        return given;
    if (system)
        return "unix:path=/run/dbus/system_bus_socket";
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    return runtime ? std::string("unix:path=") + runtime + "/bus" : std::string();
}

QDBusConnection open(Bus::Kind kind, const std::string& givenAddress, const QString& name) {
    const std::string address = givenAddress.empty() ? usualAddress(kind) : givenAddress;
    if (!busAnswers(address, std::chrono::milliseconds(limitMs)))
        return QDBusConnection(name); // a name that was never connected
    return QDBusConnection::connectToBus(QString::fromStdString(address), name);
}

} // namespace

Bus::Bus(Kind kind, const std::string& address)
    : name_(freshName()), connection_(open(kind, address, name_)) {
}

Bus::~Bus() {
    QDBusConnection::disconnectFromBus(name_);
}

QDBusMessage Bus::call(const BusObject& object, const QString& method, const QVariantList& arguments) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(object.service, object.path, object.interface, method);
    message.setArguments(arguments);
    return connection_.call(message, QDBus::Block, limitMs);
}

QVariant Bus::property(const BusObject& object, const QString& name) {
    const BusObject properties{.service = object.service,
                               .path = object.path,
                               .interface = QStringLiteral("org.freedesktop.DBus.Properties")};
    const QList<QVariant> reply =
        call(properties, QStringLiteral("Get"), {object.interface, name}).arguments();
    return reply.isEmpty() ? QVariant() : reply.first().value<QDBusVariant>().variant();
}

} // namespace zenka::platform
