#include "ui/sky/SkyView.h"

#include "rig/RigModel.h"
#include "ui/kit/Observe.h"

#include <QStringList>
#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>

namespace zenka::ui {

namespace {

/// Cut, not rounded: 100 % is said of totality alone.
double cut(double value, double digits) {
    return std::floor(value * digits + 1e-9) / digits;
}

QString degrees(const char* name, double value, int digits) {
    const std::string text = absl::StrFormat("%.*f", digits, std::abs(value));
    const bool minus = value < 0 && text.find_first_of("123456789") != std::string::npos;
    return QString::fromStdString(absl::StrFormat("%s %s%s°", name, minus ? "−" : "", text));
}

/// Null where the eclipse is not seen.
const eclipse::LocalCircumstances* seenFrom(const rig::SiteDesk& site) {
    const auto& circ = site.circ();
    return circ && circ->maxMagnitude > 0 ? &*circ : nullptr;
}

} // namespace

SkyView::SkyView(rig::RigModel& rig, const ports::Ports&, QObject* parent) : QObject(parent), rig_(rig) {
    observe(this, rig.renderPace().renderTick().changed(), [this](auto) { refresh(); });
    observe(this, rig.site().recomputed(), [this] { refresh(); });
    observe(this, rig.transport().activityChanged(), [this] { refresh(); });
    refresh();
}

void SkyView::refresh() {
    clock_ = rig_.transport().clockNow();
    scene_ = skyScene(rig_.site(), clock_);
    Q_EMIT changed();
}

bool SkyView::reached(const char* contact) const {
    const auto& contacts = rig_.site().contactTHours();
    const auto found = contacts.find(contact);
    return found != contacts.end() && found->second * 3600 <= clock_;
}

QString SkyView::phaseText() const {
    const eclipse::LocalCircumstances* here = seenFrom(rig_.site());
    if (!here)
        return QStringLiteral("No eclipse here");
    if (reached("C4"))
        return QStringLiteral("After last contact");
    if (reached("C3"))
        return QStringLiteral("Partial, the Moon moves out");
    if (reached("C2"))
        return scene_.moonRadius < 1 ? QStringLiteral("Ring") : QStringLiteral("Totality");
    if (!reached("C1"))
        return QStringLiteral("Before first contact");
    const bool central = here->totalitySeconds > 0;
    return !central && reached("MAX") ? QStringLiteral("Partial, the Moon moves out")
                                      : QStringLiteral("Partial, the Moon moves in");
}

QString SkyView::magnitudeText() const {
    return QString::fromStdString(absl::StrFormat("magnitude %.3f", cut(scene_.magnitude, 1000)));
}

QString SkyView::obscurationText() const {
    return QString::fromStdString(absl::StrFormat("%.1f %% covered", cut(scene_.obscuration() * 100, 10)));
}

QString SkyView::altitudeText() const {
    return degrees("alt", scene_.altitudeDeg, 1);
}

QString SkyView::azimuthText() const {
    return degrees("az", scene_.azimuthDeg, 0);
}

QString SkyView::numbersText() const {
    return magnitudeText() + QStringLiteral(" · ") + obscurationText() + QStringLiteral(" · ") +
           altitudeText() + QStringLiteral("  ") + azimuthText();
}

QString SkyView::noteText() const {
    const eclipse::LocalCircumstances* here = seenFrom(rig_.site());
    if (!here)
        return QStringLiteral("This eclipse is not seen from here. Choose another site or eclipse.");
    QStringList notes;
    if (scene_.altitudeDeg < 0)
        notes += QStringLiteral("Sun below the horizon.");
    if (here->totalitySeconds <= 0) {
        const bool annular = rig_.site().eclipse().rec.type == "Annular";
        // by the same measure as the number at the clock
        const double maximum = rig_.site().contactTHours().at("MAX") * 3600;
        const double most = cut(skyScene(rig_.site(), maximum).obscuration() * 100, 10);
        notes += QString::fromStdString(
            absl::StrFormat("%s here: %.1f %% at most.", annular ? "No ring" : "No totality", most));
    }
    return notes.join(QLatin1Char(' '));
}

QString SkyView::spokenText() const {
    return QStringList{QStringLiteral("Sky"), phaseText(), numbersText(), noteText()}.join(
        QStringLiteral(". "));
}

} // namespace zenka::ui
