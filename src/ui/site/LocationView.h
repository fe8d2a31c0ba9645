#pragma once

#include "base/Lifeline.h"
#include "geo/GeoPoint.h"

#include <QObject>
#include <QString>
#include <QVariantList>

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace zenka::painting {
struct EclipseTrack;
}

namespace zenka::ports {
struct Ports;
}

namespace zenka::rig {
class RigModel;
struct SavedSite;
struct Site;
} // namespace zenka::rig

namespace zenka::ui {

class SiteDraft;

/// The site being chosen: typed, searched by name, taken from the saved ones or from the map. Nothing of the
/// rig changes before apply(); what was typed stays when the sheet is closed without it, until the rig's own
/// site or eclipse changes.
class LocationView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString latText READ latText NOTIFY draftChanged)
    Q_PROPERTY(QString lonText READ lonText NOTIFY draftChanged)
    Q_PROPERTY(QString elevText READ elevText NOTIFY draftChanged)
    Q_PROPERTY(QString label READ label NOTIFY draftChanged)
    Q_PROPERTY(QString zone READ zone NOTIFY draftChanged)
    Q_PROPERTY(QString latFault READ latFault NOTIFY draftChanged)
    Q_PROPERTY(QString lonFault READ lonFault NOTIFY draftChanged)
    Q_PROPERTY(QString elevFault READ elevFault NOTIFY draftChanged)
    Q_PROPERTY(QString zoneFault READ zoneFault NOTIFY draftChanged)
    Q_PROPERTY(QString elevNote READ elevNote NOTIFY draftChanged)
    Q_PROPERTY(QString zoneNote READ zoneNote NOTIFY draftChanged)
    Q_PROPERTY(QString summary READ summary NOTIFY draftChanged)
    Q_PROPERTY(bool edited READ edited NOTIFY draftChanged)
    Q_PROPERTY(QString warning READ warning NOTIFY draftChanged)
    Q_PROPERTY(QVariantList results READ results NOTIFY searched)
    Q_PROPERTY(QString searchNote READ searchNote NOTIFY searched)
    Q_PROPERTY(QVariantList savedSites READ savedSites NOTIFY savedChanged)
    Q_PROPERTY(QString saveFault READ saveFault NOTIFY savedChanged)
    Q_PROPERTY(QString undoText READ undoText NOTIFY savedChanged)
    Q_PROPERTY(QString trackText READ trackText NOTIFY trackChanged)
    Q_PROPERTY(bool hasGreatest READ hasGreatest NOTIFY trackChanged)
    Q_PROPERTY(QString elevationHost READ elevationHost WRITE setElevationHost NOTIFY elevationHostChanged)
    Q_PROPERTY(QString probeText READ probeText NOTIFY probed)

public:
    LocationView(rig::RigModel& rig, const ports::Ports& ports, QObject* parent);
    ~LocationView() override;

    /// The sheet is shown: begins with the site in use, unless one was being typed, and computes the path.
    Q_INVOKABLE void open();
    /// Forgets what was typed.
    Q_INVOKABLE void reset();
    /// Makes it the site of the rig, confirmed; false when a field has a fault, which is then told.
    Q_INVOKABLE bool apply();

    Q_INVOKABLE void typeLatitude(const QString& text);
    Q_INVOKABLE void typeLongitude(const QString& text);
    Q_INVOKABLE void typeElevation(const QString& text);
    Q_INVOKABLE void typeLabel(const QString& text);
    Q_INVOKABLE void typeZone(const QString& text);
    /// Steps of a number up or down: a thousandth of a degree, a metre.
    Q_INVOKABLE void nudgeLatitude(int steps);
    Q_INVOKABLE void nudgeLongitude(int steps);
    Q_INVOKABLE void nudgeElevation(int steps);
    /// The typing in a field is over.
    Q_INVOKABLE void check();

    /// Up to 20 places by name, as the name is typed.
    Q_INVOKABLE void search(const QString& text);
    Q_INVOKABLE void takeResult(int index);

    Q_INVOKABLE void takeSaved(const QString& id);
    /// Keeps the site of the fields under a name; false with a fault.
    Q_INVOKABLE bool saveAs(const QString& name);
    Q_INVOKABLE void deleteSaved(const QString& id);
    Q_INVOKABLE void undoDelete();
    /// The default site is taken for an eclipse with no site of its own; again, and it is none any more.
    Q_INVOKABLE void toggleDefault(const QString& id);

    Q_INVOKABLE void goToGreatest();
    /// A point of the map, with so many decimals.
    void takePoint(const geo::GeoPoint& point, int decimals);
    /// Tells what the eclipse is at a point of the map.
    void probe(const geo::GeoPoint& point, int decimals);
    void endProbe();

    QString latText() const;
    QString lonText() const;
    QString elevText() const;
    QString label() const;
    QString zone() const;
    QString latFault() const;
    QString lonFault() const;
    QString elevFault() const;
    QString zoneFault() const;
    QString elevNote() const { return elevNote_; }
    QString zoneNote() const;
    /// The eclipse at the site of the fields.
    QString summary() const;
    bool edited() const;
    QString warning() const;
    QVariantList results() const { return results_; }
    QString searchNote() const { return searchNote_; }
    QVariantList savedSites() const;
    QString saveFault() const { return saveFault_; }
    QString undoText() const;
    QString trackText() const;
    bool hasGreatest() const;
    QString probeText() const { return probeText_; }
    /// The address of the elevation service, for the settings; empty for none.
    QString elevationHost() const;
    void setElevationHost(const QString& address);

    /// For the map: the path of the eclipse once it is computed, the site in use and the one of the fields.
    const painting::EclipseTrack* track() const;
    geo::GeoPoint siteInUse() const;
    geo::GeoPoint draftPoint() const;
    /// The site of the fields, as far as they can be read.
    const rig::Site& draftSite() const;

Q_SIGNALS:
    void draftChanged();
    void searched();
    void savedChanged();
    void trackChanged();
    void probed();
    void elevationHostChanged();
    /// The map is to show a point that was not picked on it.
    void pointWanted();

private:
    void begin();
    void computeTrack();
    void takeSite(rig::Site site);
    void askHeight();

    rig::RigModel& rig_;
    const ports::Ports& ports_;
    std::unique_ptr<SiteDraft> draft_;
    std::unique_ptr<rig::Site> base_; ///< the site in use when the typing began
    std::string baseEclipse_;
    QString elevNote_;
    int heightsAsked_ = 0;
    bool heightAwaited_ = false;
    QVariantList results_;
    QString searchNote_;
    QString saveFault_;
    std::unique_ptr<rig::SavedSite> deleted_;
    bool deletedWasDefault_ = false;
    /// By eclipse; empty while it is being computed.
    std::map<std::string, std::shared_ptr<const painting::EclipseTrack>> tracks_;
    QString probeText_;
    base::Lifeline lifeline_;
};

} // namespace zenka::ui
