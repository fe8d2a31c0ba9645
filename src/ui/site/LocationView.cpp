#include "ui/site/LocationView.h"

#include "base/CivilTime.h"
#include "eclipse/SiteWords.h"
#include "painting/EclipseTrack.h"
#include "rig/RigModel.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"
#include "ui/site/SiteDraft.h"

#include <QVariantMap>

#include <algorithm>
#include <cmath>
#include <utility>

namespace zenka::ui {

namespace {

constexpr std::size_t mostResults = 20;
using SiteField = SiteDraft::Field;

} // namespace

LocationView::LocationView(rig::RigModel& rig, const ports::Ports& ports, QObject* parent)
    : QObject(parent), rig_(rig), ports_(ports), draft_(std::make_unique<SiteDraft>(ports.places)) {
    begin();
    observe(this, rig.sites().savedSites().changed(), [this](const auto&) { Q_EMIT savedChanged(); });
    observe(this, rig.site().publishedSite().changed(), [this](const auto&) { Q_EMIT draftChanged(); });
    observe(this, rig.site().publishedEclipseId().changed(), [this](const auto&) {
        Q_EMIT trackChanged();
        Q_EMIT draftChanged();
    });
    observe(this, rig.transport().activityChanged(), [this] { Q_EMIT draftChanged(); });
}

LocationView::~LocationView() = default;

void LocationView::begin() {
    base_ = std::make_unique<rig::Site>(rig_.site().site());
    baseEclipse_ = rig_.site().eclipseId();
    draft_->take(*base_);
    elevNote_.clear();
    heightAwaited_ = false;
    Q_EMIT draftChanged();
}

void LocationView::open() {
    if (*base_ != rig_.site().site() || baseEclipse_ != rig_.site().eclipseId())
        begin();
    search(QString());
    saveFault_.clear();
    deleted_.reset();
    Q_EMIT savedChanged();
    computeTrack();
    endProbe();
}

void LocationView::reset() {
    begin();
    Q_EMIT pointWanted();
}

bool LocationView::apply() {
    const bool fine = draft_->check();
    Q_EMIT draftChanged();
    if (!fine)
        return false;
    const rig::Site& site = draft_->site();
    const bool heightAwaited = heightAwaited_;
    rig_.site().setSite(site);
    rig_.site().confirmLocation(true);
    if (site.tzId.empty())
        rig_.sites().resolveTimeZone();
    else
        rig_.site().recompute();
    begin();
    if (heightAwaited)
        rig_.sites().lookUpElevation();
    return true;
}

void LocationView::typeLatitude(const QString& text) {
    draft_->type(SiteField::lat, text.toStdString());
    Q_EMIT draftChanged();
}

void LocationView::typeLongitude(const QString& text) {
    draft_->type(SiteField::lon, text.toStdString());
    Q_EMIT draftChanged();
}

void LocationView::typeElevation(const QString& text) {
    draft_->type(SiteField::elev, text.toStdString());
    elevNote_.clear();
    heightAwaited_ = false;
    Q_EMIT draftChanged();
}

void LocationView::typeLabel(const QString& text) {
    draft_->type(SiteField::label, text.toStdString());
    Q_EMIT draftChanged();
}

void LocationView::typeZone(const QString& text) {
    draft_->type(SiteField::zone, text.toStdString());
    Q_EMIT draftChanged();
}

void LocationView::nudgeLatitude(int steps) {
    draft_->nudge(SiteField::lat, steps);
    Q_EMIT draftChanged();
}

void LocationView::nudgeLongitude(int steps) {
    draft_->nudge(SiteField::lon, steps);
    Q_EMIT draftChanged();
}

void LocationView::nudgeElevation(int steps) {
    draft_->nudge(SiteField::elev, steps);
    elevNote_.clear();
    heightAwaited_ = false;
    Q_EMIT draftChanged();
}

void LocationView::check() {
    draft_->check();
    Q_EMIT draftChanged();
}

void LocationView::search(const QString& text) {
    results_.clear();
    searchNote_.clear();
    const std::string name = text.trimmed().toStdString();
    if (!name.empty()) {
        for (const ports::FoundPlace& place : ports_.places.search(name, mostResults))
            results_.append(
                QVariantMap{{QStringLiteral("label"), qt(place.label)},
                            {QStringLiteral("position"), qt(eclipse::positionText(place.lat, place.lon, 2))},
                            {QStringLiteral("lat"), place.lat},
                            {QStringLiteral("lon"), place.lon}});
        if (results_.isEmpty())
            searchNote_ = QStringLiteral("No place of this name is known. Try another spelling or a larger "
                                         "town nearby, or pick the point on the map.");
    }
    Q_EMIT searched();
}

void LocationView::takeResult(int index) {
    if (index < 0 || index >= results_.size())
        return;
    const QVariantMap place = results_[index].toMap();
    rig::Site site = draft_->site();
    site.lat = place[QStringLiteral("lat")].toDouble();
    site.lon = place[QStringLiteral("lon")].toDouble();
    site.label = place[QStringLiteral("label")].toString().toStdString();
    site.tzId = ports_.places.zoneAt(site.lat, site.lon).value_or(std::string());
    takeSite(std::move(site));
    askHeight();
}

void LocationView::takeSite(rig::Site site) {
    draft_->take(std::move(site));
    elevNote_.clear();
    heightAwaited_ = false;
    Q_EMIT draftChanged();
    Q_EMIT pointWanted();
}

void LocationView::takeSaved(const QString& id) {
    for (const rig::SavedSite& saved : rig_.sites().savedSites().get()) {
        if (saved.id == id.toStdString()) {
            takeSite({.lat = saved.lat,
                      .lon = saved.lon,
                      .elev = saved.elev,
                      .label = saved.name,
                      .tzId = saved.tz});
            return;
        }
    }
}

bool LocationView::saveAs(const QString& name) {
    const std::string wanted = name.trimmed().toStdString();
    const bool fine = draft_->check();
    const auto& saved = rig_.sites().savedSites().get();
    if (!fine)
        saveFault_ = QStringLiteral("A field has a fault. Mend it, then save the site.");
    else if (wanted.empty())
        saveFault_ = QStringLiteral("The site has no name yet. Type one, then save it.");
    else if (std::ranges::any_of(saved, [&](const auto& site) { return site.name == wanted; }))
        saveFault_ =
            QStringLiteral("A site of this name is saved already. Type another name or delete that one.");
    else if (draft_->site().tzId.empty())
        saveFault_ = QStringLiteral("No time zone is known at sea. Type one, then save the site.");
    else
        saveFault_.clear();
    Q_EMIT draftChanged();
    if (saveFault_.isEmpty()) {
        const rig::Site& site = draft_->site();
        rig_.sites().addSite(wanted, site.lat, site.lon, site.elev, site.tzId);
    }
    Q_EMIT savedChanged();
    return saveFault_.isEmpty();
}

void LocationView::deleteSaved(const QString& id) {
    const auto& saved = rig_.sites().savedSites().get();
    const auto found = std::ranges::find(saved, id.toStdString(), &rig::SavedSite::id);
    if (found == saved.end())
        return;
    deleted_ = std::make_unique<rig::SavedSite>(*found);
    deletedWasDefault_ = rig_.sites().defaultSiteId() == deleted_->id;
    rig_.sites().deleteSite(deleted_->id);
}

void LocationView::undoDelete() {
    if (!deleted_)
        return;
    const auto site = std::exchange(deleted_, nullptr);
    rig_.sites().addSite(site->name, site->lat, site->lon, site->elev, site->tz);
    if (deletedWasDefault_)
        rig_.sites().setDefaultSite(rig_.sites().savedSites()->back().id);
    Q_EMIT savedChanged();
}

void LocationView::toggleDefault(const QString& id) {
    const std::string chosen = id.toStdString();
    const bool already = rig_.sites().defaultSiteId() == chosen;
    rig_.sites().setDefaultSite(already ? std::nullopt : std::optional(chosen));
    Q_EMIT savedChanged();
}

void LocationView::goToGreatest() {
    const painting::EclipseTrack* track = this->track();
    if (!track || !track->greatest)
        return;
    const eclipse::DurationPoint& point = *track->greatest;
    rig::Site site = draft_->site();
    site.lat = point.lat;
    site.lon = point.lon;
    site.elev = 0;
    site.label = "Greatest duration";
    site.tzId = ports_.places.zoneAt(point.lat, point.lon).value_or(std::string());
    takeSite(std::move(site));
    askHeight();
}

void LocationView::takePoint(const geo::GeoPoint& point, int decimals) {
    const double unit = std::pow(10.0, decimals);
    draft_->moveTo(std::round(point.lat * unit) / unit, std::round(point.lon * unit) / unit);
    askHeight();
}

/// The height of a point that was picked comes from the network, and only if the network has it.
void LocationView::askHeight() {
    if (rig_.sites().ground().host().empty())
        return;
    heightAwaited_ = true;
    elevNote_ = QStringLiteral("Asking for the height of the ground…");
    Q_EMIT draftChanged();
    const auto arrive = [this, number = ++heightsAsked_](std::optional<double> metres) {
        if (!heightAwaited_ || number != heightsAsked_)
            return; // typed over, or another point was picked meanwhile
        heightAwaited_ = false;
        if (metres)
            draft_->setElevation(*metres);
        elevNote_ = metres ? QStringLiteral("The height of the ground here.")
                           : QStringLiteral("The elevation service did not answer, so the elevation is left "
                                            "as it was. Type the height of your place.");
        Q_EMIT draftChanged();
    };
    const rig::Site& site = draft_->site();
    rig_.sites().ground().ask(site.lat, site.lon, lifeline_.guard(arrive));
}

void LocationView::probe(const geo::GeoPoint& point, int decimals) {
    const auto circ = rig_.site().eclipse().localCircumstances(
        {.lat = point.lat, .lon = point.lon, .elev = draft_->site().elev});
    const auto zone = base::timeZoneOrUtc(ports_.places.zoneAt(point.lat, point.lon).value_or("UTC"));
    probeText_ =
        qt(eclipse::positionText(point.lat, point.lon, decimals) + "   " + eclipse::eclipseText(circ, zone));
    Q_EMIT probed();
}

void LocationView::endProbe() {
    probeText_ = QStringLiteral("Click takes a point, dragging moves the map, the wheel zooms. By keyboard: "
                                "arrows, + and −, Enter takes the cross-hair.");
    Q_EMIT probed();
}

QString LocationView::latText() const {
    return qt(draft_->text(SiteField::lat));
}

QString LocationView::lonText() const {
    return qt(draft_->text(SiteField::lon));
}

QString LocationView::elevText() const {
    return qt(draft_->text(SiteField::elev));
}

QString LocationView::label() const {
    return qt(draft_->text(SiteField::label));
}

QString LocationView::zone() const {
    return qt(draft_->text(SiteField::zone));
}

QString LocationView::latFault() const {
    return qt(draft_->fault(SiteField::lat));
}

QString LocationView::lonFault() const {
    return qt(draft_->fault(SiteField::lon));
}

QString LocationView::elevFault() const {
    return qt(draft_->fault(SiteField::elev));
}

QString LocationView::zoneFault() const {
    return qt(draft_->fault(SiteField::zone));
}

QString LocationView::zoneNote() const {
    return qt(draft_->zoneNote());
}

QString LocationView::summary() const {
    const rig::Site& site = draft_->site();
    const auto circ =
        rig_.site().eclipse().localCircumstances({.lat = site.lat, .lon = site.lon, .elev = site.elev});
    return qt(eclipse::eclipseText(circ, base::timeZoneOrUtc(site.tzId)));
}

bool LocationView::edited() const {
    return draft_->site() != rig_.site().site();
}

QString LocationView::warning() const {
    return rig_.transport().live()
               ? QStringLiteral("The clock is live: another site moves every frame of the script. Change it "
                                "only if you really stand there.")
               : QString();
}

QVariantList LocationView::savedSites() const {
    QVariantList rows;
    const auto standard = rig_.sites().defaultSiteId();
    for (const rig::SavedSite& site : rig_.sites().savedSites().get())
        rows.append(
            QVariantMap{{QStringLiteral("siteId"), qt(site.id)},
                        {QStringLiteral("name"), qt(site.name)},
                        {QStringLiteral("position"), qt(eclipse::positionText(site.lat, site.lon, 3))},
                        {QStringLiteral("isDefault"), standard == site.id}});
    return rows;
}

QString LocationView::undoText() const {
    return deleted_ ? QStringLiteral("Deleted ") + qt(deleted_->name) + QStringLiteral(".") : QString();
}

QString LocationView::trackText() const {
    const painting::EclipseTrack* track = this->track();
    if (!track)
        return QStringLiteral("Computing the path…");
    if (!track->greatest)
        return QStringLiteral("This eclipse has no central line: it is partial everywhere.");
    return qt("Greatest duration " + eclipse::durationText(track->greatest->seconds));
}

bool LocationView::hasGreatest() const {
    const painting::EclipseTrack* track = this->track();
    return track && track->greatest;
}

QString LocationView::elevationHost() const {
    return qt(rig_.sites().ground().host());
}

void LocationView::setElevationHost(const QString& address) {
    rig_.sites().ground().setHost(address.toStdString());
    Q_EMIT elevationHostChanged();
}

const painting::EclipseTrack* LocationView::track() const {
    const auto found = tracks_.find(rig_.site().eclipseId());
    return found == tracks_.end() ? nullptr : found->second.get();
}

geo::GeoPoint LocationView::siteInUse() const {
    return {.lat = rig_.site().site().lat, .lon = rig_.site().site().lon};
}

const rig::Site& LocationView::draftSite() const {
    return draft_->site();
}

geo::GeoPoint LocationView::draftPoint() const {
    return {.lat = draft_->site().lat, .lon = draft_->site().lon};
}

void LocationView::computeTrack() {
    const std::string id = rig_.site().eclipseId();
    if (!tracks_.try_emplace(id).second)
        return;
    const auto arrive = lifeline_.guard([this, id](std::shared_ptr<const painting::EclipseTrack> track) {
        tracks_[id] = std::move(track);
        Q_EMIT trackChanged();
    });
    const auto eclipse = std::make_shared<const eclipse::Eclipse>(rig_.site().eclipse().rec);
    ports_.queues.background([arrive, eclipse, &loop = ports_.loop] {
        loop.post([arrive, track = std::make_shared<const painting::EclipseTrack>(
                               painting::computeTrack(*eclipse))] { arrive(track); });
    });
}

} // namespace zenka::ui
