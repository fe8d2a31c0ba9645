#include "ui/site/HorizonView.h"

#include "ports/Ports.h"
#include "rig/RigModel.h"
#include "rig/shared/SettingsKeys.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"
#include "ui/site/LocationView.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <utility>

namespace zenka::ui {

HorizonView::HorizonView(rig::RigModel& rig, const ports::Ports& ports, LocationView& location,
                         QObject* parent)
    : QObject(parent), rig_(rig), ports_(ports), location_(location) {
    connect(&location, &LocationView::draftChanged, this, [this] { look(); });
    observe(this, rig.horizons().progress().changed(), [this](const auto& progress) {
        Q_EMIT searchChanged();
        if (!progress)
            look();
    });
    observe(this, rig.horizons().remark().changed(), [this](const auto&) { Q_EMIT searchChanged(); });
}

void HorizonView::open() {
    shown_ = true;
    look();
}

void HorizonView::look() {
    if (!shown_)
        return;
    const rig::Site& site = location_.draftSite();
    const rig::KnownHorizon* horizon = rig_.horizons().at(site.lat, site.lon);
    scene_ = horizonScene(rig_.site().eclipse(), {.lat = site.lat, .lon = site.lon, .elev = site.elev},
                          horizon ? horizon->result.samples : std::vector<double>());
    verdict_ = verdictOf(horizon ? horizon->result.source : "");
    Q_EMIT sceneChanged();
}

void HorizonView::find() {
    const rig::Site& site = location_.draftSite();
    rig_.horizons().find({.lat = site.lat, .lon = site.lon, .elev = site.elev}, buildings_);
}

void HorizonView::cancel() {
    rig_.horizons().cancel();
}

bool HorizonView::hidden() const {
    return std::ranges::any_of(scene_.contacts, &rig::ContactClearance::hidden);
}

QString HorizonView::verdictOf(const std::string& source) const {
    if (scene_.contacts.empty())
        return QStringLiteral("No eclipse is seen from here.");
    if (!known())
        return QStringLiteral(
            "The terrain of this place has not been looked up yet; the horizon is drawn flat.");
    std::string words;
    for (const auto& contact : scene_.contacts) {
        if (contact.hidden())
            words += absl::StrFormat("%s%s hidden: the Sun stands at %.1f°, the horizon at %.1f°",
                                     words.empty() ? "" : "; ", contact.key, contact.sunAltDeg,
                                     contact.horizonDeg);
    }
    if (!words.empty())
        return qt(words + " (" + source + ").");
    const auto tightest = std::ranges::min_element(scene_.contacts, {}, [](const auto& contact) {
        return contact.sunAltDeg < 0 ? 90.0 : contact.sunAltDeg - contact.horizonDeg;
    });
    if (tightest->sunAltDeg < 0)
        return QStringLiteral("The Sun is down at every contact.");
    return qt(
        absl::StrFormat("The Sun stands clear at every contact that is up; closest at %s, %.1f° above (%s).",
                        tightest->key, tightest->sunAltDeg - tightest->horizonDeg, source));
}

bool HorizonView::running() const {
    return rig_.horizons().progress().get().has_value();
}

QString HorizonView::progress() const {
    const auto& progress = rig_.horizons().progress().get();
    if (!progress)
        return {};
    if (progress->of == 0)
        return qt(progress->words);
    return qt(absl::StrFormat("%s %d of %d", progress->words, progress->done, progress->of));
}

QString HorizonView::remark() const {
    return qt(rig_.horizons().remark().get());
}

void HorizonView::setBuildings(bool wanted) {
    buildings_ = wanted;
    Q_EMIT searchChanged();
}

bool HorizonView::openTiles() const {
    return ports_.settings.text(rig::settingsKeys::terrainTiles).value_or("") ==
           rig::TerrainSource::openTiles;
}

void HorizonView::setOpenTiles(bool open) {
    ports_.settings.setText(rig::settingsKeys::terrainTiles,
                            open ? rig::TerrainSource::openTiles : rig::TerrainSource::tokenTiles);
    Q_EMIT settingsChanged();
}

QString HorizonView::token() const {
    return qt(ports_.settings.text(rig::settingsKeys::terrainToken).value_or(""));
}

void HorizonView::setToken(const QString& token) {
    ports_.settings.setText(rig::settingsKeys::terrainToken, token.trimmed().toStdString());
    Q_EMIT settingsChanged();
}

} // namespace zenka::ui
