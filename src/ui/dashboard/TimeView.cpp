#include "ui/dashboard/TimeView.h"

#include "rig/RigModel.h"
#include "rig/shared/PlatformWords.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>

namespace zenka::ui {

namespace {

using rig::platformWords::computer;

const char* direction(double seconds) {
    return seconds >= 0 ? "ahead" : "behind";
}

std::string amount(double seconds, int digits) {
    return absl::StrFormat("%.*f", digits, std::abs(seconds));
}

QString shortAmount(double seconds, int digits) {
    const double size = std::abs(seconds);
    const std::string sign = seconds < 0 ? "−" : "+";
    return qt(sign +
              (size < 90 ? absl::StrFormat("%.*f s", digits, size) : absl::StrFormat("%.0f min", size / 60)));
}

} // namespace

TimeView::TimeView(rig::RigModel& rig, QObject* parent) : QObject(parent), rig_(rig) {
    observe(this, rig.time().changed(), [this] { Q_EMIT changed(); });
    // How long a receiver has searched counts on.
    observe(this, rig.renderPace().renderTick().changed(), [this](auto) {
        if (gpsConnected() && !gpsLocked())
            Q_EMIT changed();
    });
}

// --- the clock

QString TimeView::clockText() const {
    if (const auto& offset = rig_.time().gpsOffsetSeconds().get())
        return QStringLiteral("◷ GPS ") + shortAmount(*offset, 1);
    if (const auto& skew = rig_.time().clockSkewSeconds().get())
        return QStringLiteral("◷ net ") + shortAmount(*skew, 0);
    return checking() ? QStringLiteral("◷ checking…") : QStringLiteral("◷ unchecked");
}

QString TimeView::clockBrief() const {
    if (const auto& offset = rig_.time().gpsOffsetSeconds().get())
        return QStringLiteral("◷ ") + shortAmount(*offset, 1);
    const auto& skew = rig_.time().clockSkewSeconds().get();
    return skew ? QStringLiteral("◷ ") + shortAmount(*skew, 0) : QStringLiteral("◷ ?");
}

bool TimeView::clockIsOff() const {
    const auto& skew = rig_.time().clockSkewSeconds().get();
    return !rig_.time().gpsOffsetSeconds().get() && skew && std::abs(*skew) > 5;
}

QString TimeView::clockWords() const {
    const rig::TimeSources& time = rig_.time();
    const bool searching = gpsConnected() && !gpsLocked();
    if (const auto& offset = time.gpsOffsetSeconds().get()) {
        const auto fix = lock();
        return qt(absl::StrFormat("Time source: GPS puck (satellite UTC, accurate to ~0.1s and works with no "
                                  "internet). Your %s clock is %ss %s; arming corrects to GPS automatically. "
                                  "This is the most trustworthy source. %d satellites.",
                                  computer, amount(*offset, 1), direction(*offset), fix ? fix->satsUsed : 0));
    }
    if (const auto& skew = time.clockSkewSeconds().get())
        return qt(
            absl::StrFormat("Time source: network (checked against Zenka's server, good to ~1-2s, needs "
                            "internet). Your %s clock is %ss %s network time. Every shot is "
                            "contact-relative, so a wrong clock fires the sequence off. Tap to re-check.",
                            computer, amount(*skew, 0), *skew >= 0 ? "ahead of" : "behind") +
            std::string(searching ? " A GPS puck is connected but hasn't locked yet (needs a view of the "
                                    "sky); once it does, it takes over as the more accurate, offline "
                                    "source."
                                  : " For a better, offline source, plug in a USB GPS puck. No puck? "
                                    "Cross-check against your phone, whose time is GPS-synced."));
    return qt(
        "Time source: system clock only, with no reference to check it against (no internet, no GPS "
        "lock)." +
        std::string(searching ? " GPS is connected but hasn't locked yet (needs a view of the sky)." : "") +
        absl::StrFormat(" The %s clock drifts several seconds over a few days offline, and every shot is "
                        "contact-relative. Best field cross-check: your phone (its time is GPS-synced). "
                        "Plug in a USB GPS puck for an offline reference, or tap to retry the network "
                        "check.",
                        computer));
}

QString TimeView::serviceWords() const {
    const auto synchronised = rig_.time().systemSynchronised();
    if (!synchronised)
        return {};
    return *synchronised
               ? QStringLiteral("The system's own time service says that the clock is synchronised.")
               : QStringLiteral("The system's own time service says that the clock is not synchronised.");
}

QString TimeView::checkWords() const {
    if (checking())
        return QStringLiteral("Asking %1…").arg(server());
    return server().isEmpty() ? QStringLiteral("No time server is set (Settings), so none is asked.")
                              : qt(rig_.time().checkFault());
}

bool TimeView::checking() const {
    return rig_.time().checking().get();
}

QString TimeView::server() const {
    return qt(rig_.time().timeServer());
}

void TimeView::setServer(const QString& address) {
    rig_.time().setTimeServer(address.toStdString());
    Q_EMIT changed();
}

void TimeView::checkAgain() {
    rig_.time().checkClockSkew();
}

// --- the receiver

bool TimeView::gpsConnected() const {
    return rig_.time().gpsConnected().get();
}

bool TimeView::gpsLocked() const {
    return lock().has_value();
}

std::optional<gps::GPSFix> TimeView::lock() const {
    const auto& fix = rig_.time().gpsFix().get();
    return fix && fix->hasFix ? fix : std::nullopt;
}

QString TimeView::gpsText() const {
    if (!gpsConnected())
        return {};
    return gpsLocked() ? QStringLiteral("GPS lock") : QStringLiteral("GPS acquiring (needs sky)");
}

QString TimeView::gpsTip() const {
    return gpsLocked() ? QStringLiteral("GPS locked. Click for time + location.")
                       : QStringLiteral("GPS acquiring (needs a view of the sky). Click for details.");
}

QStringList TimeView::gpsLines() const {
    const rig::TimeSources& time = rig_.time();
    const auto fix = lock();
    if (!fix) {
        const gps::GPSFix seen = time.gpsFix().get().value_or(gps::GPSFix{});
        const auto since = time.gpsAcquiringSince();
        const double waited = since ? std::max(0.0, (time.now() - *since).count()) : 0;
        return {
            seen.satsInView == 0 && seen.satsUsed == 0
                ? qt(absl::StrFormat("No satellite data yet after %.0fs. Give it a clear, open view of the "
                                     "sky, away from buildings and your body; a cold start can take a few "
                                     "minutes. Time still runs off the network/%s clock meanwhile.",
                                     waited, computer))
                : qt(absl::StrFormat("Puck is streaming (%d in view, %d used)", seen.satsInView,
                                     seen.satsUsed)),
            QStringLiteral("Move the puck to a window or outside; a lock takes a couple of minutes, then "
                           "time and location appear here.")};
    }
    QStringList lines;
    if (const auto& offset = time.gpsOffsetSeconds().get())
        lines.append(qt(absl::StrFormat("This %s's clock is %.1f s %s satellite time.", computer,
                                        std::abs(*offset), *offset >= 0 ? "ahead of" : "behind")));
    if (fix->lat && fix->lon)
        lines.append(qt(absl::StrFormat("%.5f, %.5f", *fix->lat, *fix->lon) +
                        (fix->altitudeM ? absl::StrFormat(", %.0f m", *fix->altitudeM) : std::string())));
    lines.append(qt(absl::StrFormat("%d satellites used, %d in view", fix->satsUsed, fix->satsInView) +
                    (fix->hdop ? absl::StrFormat(", HDOP %.1f", *fix->hdop) : std::string())));
    lines.append(QStringLiteral("Arming the eclipse clock corrects to this satellite time automatically."));
    return lines;
}

QString TimeView::gpsSiteLine() const {
    if (!gpsConnected())
        return {};
    if (const auto fix = lock())
        return qt(absl::StrFormat("GPS lock · %d sats", fix->satsUsed) +
                  (fix->altitudeM ? absl::StrFormat(" · alt %.0f m", *fix->altitudeM) : std::string()));
    const gps::GPSFix seen = rig_.time().gpsFix().get().value_or(gps::GPSFix{});
    return qt(absl::StrFormat("GPS connected, acquiring (needs sky): %d in view", seen.satsInView));
}

bool TimeView::hasPosition() const {
    const auto fix = lock();
    return fix && fix->lat && fix->lon && !rig_.transport().runActive();
}

void TimeView::usePosition() {
    const auto fix = lock();
    if (fix && fix->lat && fix->lon && !rig_.transport().runActive())
        rig_.sites().setLocationFromGPS(*fix->lat, *fix->lon,
                                        fix->altitudeM.value_or(rig_.site().site().elev));
}

} // namespace zenka::ui
