#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

#include <string>

namespace zenka::platform {

/// One object of a service, and the interface that is called.
struct BusObject {
    QString service;
    QString path;
    QString interface;
};

/// A connection of its own to a message bus, closed with its object: the services then let go what they
/// held for it. Opening and calling wait for the other side, some seconds at most, so neither belongs on
/// the main thread. A bus that does not answer counts as none.
class Bus {
public:
    enum class Kind { system, session };

    /// An empty address means the machine's usual bus of that kind.
    Bus(Kind kind, const std::string& address);
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;
    ~Bus();

    bool connected() const { return connection_.isConnected(); }

    /// The reply, or an error message when none comes within 5 s.
    QDBusMessage call(const BusObject& object, const QString& method, const QVariantList& arguments);

    /// A property, whose interface is the object's; an invalid one when it cannot be had.
    QVariant property(const BusObject& object, const QString& name);

private:
    const QString name_;
    QDBusConnection connection_;
};

} // namespace zenka::platform
