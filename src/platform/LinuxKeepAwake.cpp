#include "platform/LinuxKeepAwake.h"

#include "platform/Bus.h"
#include "platform/LooseThread.h"

#include <QDBusUnixFileDescriptor>

#include <condition_variable>
#include <mutex>
#include <optional>

namespace zenka::platform {

namespace {

QString who() {
    return QStringLiteral("Zenka");
}

/// What is held; destroying it lets go.
using Hold = std::shared_ptr<void>;

/// Takes a hold, or tells why there is none.
using Taker = Hold (*)(const std::shared_ptr<Bus>& bus, const std::string& reason, std::string& fault);

std::string faultOf(const QDBusMessage& reply) {
    return reply.type() == QDBusMessage::ErrorMessage ? reply.errorMessage().toStdString()
                                                      : std::string("the answer makes no sense");
}

Hold takeSleepLock(const std::shared_ptr<Bus>& bus, const std::string& reason, std::string& fault) {
    const BusObject logind{.service = QStringLiteral("org.freedesktop.login1"),
                           .path = QStringLiteral("/org/freedesktop/login1"),
                           .interface = QStringLiteral("org.freedesktop.login1.Manager")};
    const QDBusMessage reply = bus->call(
        logind, QStringLiteral("Inhibit"),
        {QStringLiteral("idle:sleep"), who(), QString::fromStdString(reason), QStringLiteral("block")});
    // logind holds as long as this descriptor is open
    auto lock = std::make_shared<QDBusUnixFileDescriptor>(
        reply.arguments().value(0).value<QDBusUnixFileDescriptor>());
    if (lock->isValid())
        return lock;
    fault = "The system gives no lock against sleep: " + faultOf(reply);
    return nullptr;
}

Hold takeDisplayHold(const std::shared_ptr<Bus>& bus, const std::string& reason, std::string& fault) {
    const BusObject screenSaver{.service = QStringLiteral("org.freedesktop.ScreenSaver"),
                                .path = QStringLiteral("/org/freedesktop/ScreenSaver"),
                                .interface = QStringLiteral("org.freedesktop.ScreenSaver")};
    const QDBusMessage reply =
        bus->call(screenSaver, QStringLiteral("Inhibit"), {who(), QString::fromStdString(reason)});
    const QVariant cookie = reply.arguments().value(0);
    if (reply.type() != QDBusMessage::ReplyMessage || !cookie.canConvert<quint32>()) {
        fault = "The desktop does not hold off the blanking of the display: " + faultOf(reply);
        return nullptr;
    }
    return {new quint32(cookie.toUInt()), [bus, screenSaver](quint32* held) {
                bus->call(screenSaver, QStringLiteral("UnInhibit"), {QVariant::fromValue(*held)});
                delete held;
            }};
}

/// What the main thread wishes, told to a bus's thread. Only the newest wish is kept.
struct Wish {
    std::mutex mutex;
    std::condition_variable changed;
    std::optional<std::string> reason;
    std::uint64_t version = 0;
    bool ending = false;
};

} // namespace

class LinuxKeepAwake::Holder {
public:
    Holder(Bus::Kind kind, std::string address, Taker take, Report report)
        : thread_([wish = wish_, kind, address = std::move(address), take, report = std::move(report)] {
              serve(*wish, kind, address, take, report);
          }) {}
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;
    ~Holder() {
        const std::lock_guard lock(wish_->mutex);
        wish_->ending = true;
        wish_->changed.notify_all();
    }

    void wish(std::optional<std::string> reason) {
        const std::lock_guard lock(wish_->mutex);
        wish_->reason = std::move(reason);
        ++wish_->version;
        wish_->changed.notify_all();
    }

private:
    static void serve(Wish& wish, Bus::Kind kind, const std::string& address, Taker take,
                      const Report& report) {
        std::shared_ptr<Bus> bus;
        Hold hold;
        std::uint64_t served = 0;
        std::unique_lock lock(wish.mutex);
        for (;;) {
            wish.changed.wait(lock, [&] { return wish.ending || wish.version != served; });
            if (wish.ending)
                break;
            served = wish.version;
            const std::optional<std::string> reason = wish.reason;
            lock.unlock();
            if (reason) {
                if (!bus || !bus->connected())
                    bus = std::make_shared<Bus>(kind, address);
                std::string fault;
                // the new hold is taken before the old one goes, so that there is no gap
                if (Hold next = take(bus, *reason, fault))
                    hold = std::move(next);
                else if (report)
                    report(fault);
            } else {
                hold.reset();
                bus.reset();
            }
            lock.lock();
        }
        lock.unlock();
    }

    std::shared_ptr<Wish> wish_ = std::make_shared<Wish>();
    LooseThread thread_;
};

LinuxKeepAwake::LinuxKeepAwake(const Report& report) : LinuxKeepAwake(report, Buses{}) {
}

LinuxKeepAwake::LinuxKeepAwake(const Report& report, const Buses& buses)
    : machine_(std::make_unique<Holder>(Bus::Kind::system, buses.system, takeSleepLock, report)),
      display_(std::make_unique<Holder>(Bus::Kind::session, buses.session, takeDisplayHold, report)) {
}

LinuxKeepAwake::~LinuxKeepAwake() = default;

void LinuxKeepAwake::hold(const std::string& reason) {
    machine_->wish(reason);
    display_->wish(reason);
}

void LinuxKeepAwake::release() {
    machine_->wish(std::nullopt);
    display_->wish(std::nullopt);
}

} // namespace zenka::platform
