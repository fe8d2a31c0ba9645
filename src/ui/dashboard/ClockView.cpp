#include "ui/dashboard/ClockView.h"

#include "base/TimeWords.h"
#include "eclipse/SiteWords.h"
#include "rig/RigModel.h"
#include "rig/run/Countdown.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <QVariantMap>
#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>

namespace zenka::ui {

namespace {

std::string signedDegrees(double degrees) {
    return absl::StrFormat("%s%.3f", degrees < 0 ? "−" : "", std::abs(degrees));
}

} // namespace

ClockView::ClockView(rig::RigModel& rig, QObject* parent) : QObject(parent), rig_(rig) {
    const auto place = [this] {
        Q_EMIT placed();
        Q_EMIT ticked();
    };
    observe(this, rig.renderPace().renderTick().changed(), [this](auto) { Q_EMIT ticked(); });
    observe(this, rig.site().recomputed(), place);
    observe(this, rig.site().publishedSite().changed(), [place](const auto&) { place(); });
    observe(this, rig.script().compiled(), [this] { Q_EMIT ticked(); });
    observe(this, rig.transport().activityChanged(), [this] {
        Q_EMIT stateChanged();
        Q_EMIT ticked();
    });
    observe(this, rig.transport().timingStatus().changed(), [this](const auto&) { Q_EMIT stateChanged(); });
}

QString ClockView::siteTime() const {
    return qt(rig_.site().fmtClock(rig_.transport().clockNow()));
}

QString ClockView::zoneName() const {
    return qt(base::tzAbbr(rig_.site().site().tzId, rig_.site().wallAt(rig_.transport().clockNow())));
}

QString ClockView::utcTime() const {
    return qt(base::localHMS(rig_.site().wallAt(rig_.transport().clockNow()), "UTC"));
}

QString ClockView::siteLabel() const {
    const std::string& label = rig_.site().site().label;
    return label.empty() ? QStringLiteral("Unnamed site") : qt(label);
}

QString ClockView::sitePosition() const {
    const rig::Site& site = rig_.site().site();
    return qt(absl::StrFormat("%s %s  %.0f m", signedDegrees(site.lat), signedDegrees(site.lon), site.elev));
}

QString ClockView::eclipseName() const {
    return qt(rig_.site().eclipse().rec.shortName);
}

bool ClockView::live() const {
    return rig_.transport().live();
}

bool ClockView::playing() const {
    return rig_.transport().playing().get();
}

bool ClockView::runActive() const {
    return rig_.transport().runActive();
}

QString ClockView::modeWord() const {
    return live() ? QStringLiteral("LIVE") : QStringLiteral("SIMULATED");
}

QString ClockView::statusText() const {
    return qt(rig_.transport().timingStatus().get());
}

bool ClockView::inTotality() const {
    return rig::inCentralPhase(rig_.site(), rig_.transport().clockNow());
}

QString ClockView::nextContact() const {
    const double now = rig_.transport().clockNow();
    const auto& contacts = rig_.site().contactTHours();
    for (const char* key : {"C1", "C2", "MAX", "C3", "C4"}) {
        const auto found = contacts.find(key);
        if (found != contacts.end() && found->second * 3600 > now)
            return QString::fromLatin1(key);
    }
    return {};
}

rig::Countdown ClockView::next() const {
    return rig::countdownAt(rig_.site(), rig_.transport().clockNow());
}

QString ClockView::countdownTitle() const {
    return qt(next().title);
}

QString ClockView::countdown() const {
    return qt(next().text());
}

bool ClockView::lastMinute() const {
    const double left = next().seconds;
    return left >= 0 && left <= 60;
}

QString ClockView::phaseText() const {
    const auto& circ = rig_.site().circ();
    if (!circ || circ->maxMagnitude <= 0)
        return QStringLiteral("This eclipse is not seen from here. Choose another site or eclipse.");
    if (circ->totalitySeconds <= 0)
        return qt(absl::StrFormat("No totality here: partial, magnitude %.3f, %.1f %% covered.",
                                  circ->maxMagnitude, circ->maxObscuration * 100));
    const char* phase = circ->maxMagnitude >= 1 ? "totality" : "ring";
    return qt(absl::StrFormat("%s %s, magnitude %.4f", phase, eclipse::durationText(circ->totalitySeconds),
                              circ->maxMagnitude));
}

QVariantList ClockView::contacts() const {
    QVariantList rows;
    const auto& circ = rig_.site().circ();
    if (!circ)
        return rows;
    for (const eclipse::ContactEvent& event : circ->events) {
        const bool down = event.sunAltDeg < 0;
        rows.append(QVariantMap{
            {QStringLiteral("key"), qt(event.key)},
            {QStringLiteral("time"), qt(rig_.site().fmtClock(event.tHours * 3600))},
            {QStringLiteral("alt"), qt(absl::StrFormat("%.0f°", event.sunAltDeg))},
            {QStringLiteral("az"), qt(absl::StrFormat("%.0f°", event.sunAzDeg))},
            {QStringLiteral("down"), down},
            {QStringLiteral("words"),
             qt(event.label) + (down ? QStringLiteral(", Sun below the horizon") : QString())},
        });
    }
    return rows;
}

QString ClockView::nextShot() const {
    return qt(rig::nextShotText(rig_.script(), rig_.fireLoop().nextOffset(), rig_.transport().clockNow()));
}

bool ClockView::jumpToLocalTime(const QString& text) {
    return rig_.transport().jumpToLocalTime(text.toStdString());
}

QString ClockView::nudged(const QString& time, int seconds) {
    const auto read = base::readTimeOfDay(time.toStdString());
    return read ? qt(base::laterTimeOfDay(*read, seconds)) : time;
}

void ClockView::jumpToContact(const QString& key) {
    rig_.transport().jump(key.toStdString());
}

} // namespace zenka::ui
