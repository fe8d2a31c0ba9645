#include "platform/RealtimePriority.h"

#include "platform/Bus.h"

#include <algorithm>
#include <sched.h>
#include <sys/resource.h>

namespace zenka::platform {

namespace {

/// Over all ordinary work, under the sound servers and the drivers' interrupt threads.
constexpr int priority = 5;

/// RealtimeKit refuses a process whose limit is above its own, and a thread that runs so long without
/// a pause gets SIGXCPU.
void boundRealtimeRun(rlim_t limitMicroseconds) {
    rlimit limit{};
    if (::getrlimit(RLIMIT_RTTIME, &limit) != 0 || limit.rlim_max <= limitMicroseconds)
        return;
    limit.rlim_max = limitMicroseconds;
    limit.rlim_cur = std::min(limit.rlim_cur, limitMicroseconds);
    ::setrlimit(RLIMIT_RTTIME, &limit);
}

} // namespace

bool takeRealtimePriority() {
    // of the calling thread only, as the kernel reads it: 0 is not the process
    const sched_param parameter{.sched_priority = priority};
    return ::sched_setscheduler(0, SCHED_RR | SCHED_RESET_ON_FORK, &parameter) == 0;
}

bool askForRealtimePriority(pid_t thread, const std::string& systemBusAddress) {
    Bus bus(Bus::Kind::system, systemBusAddress);
    if (!bus.connected())
        return false;
    const BusObject kit{.service = QStringLiteral("org.freedesktop.RealtimeKit1"),
                        .path = QStringLiteral("/org/freedesktop/RealtimeKit1"),
                        .interface = QStringLiteral("org.freedesktop.RealtimeKit1")};
    const int highest = bus.property(kit, QStringLiteral("MaxRealtimePriority")).toInt();
    const qlonglong limit = bus.property(kit, QStringLiteral("RTTimeUSecMax")).toLongLong();
    if (highest <= 0 || limit <= 0)
        return false;
    boundRealtimeRun(static_cast<rlim_t>(limit));
    const QDBusMessage reply =
        bus.call(kit, QStringLiteral("MakeThreadRealtime"),
                 {QVariant::fromValue(static_cast<quint64>(thread)),
                  QVariant::fromValue(static_cast<quint32>(std::min(priority, highest)))});
    return reply.type() == QDBusMessage::ReplyMessage;
}

} // namespace zenka::platform
