#pragma once

#include "ui/site/HorizonScene.h"

#include <QObject>
#include <QString>

namespace zenka::ports {
struct Ports;
}

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

class LocationView;

/// The terrain around the site that is being chosen, and where the Sun goes over it.
class HorizonView : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool known READ known NOTIFY sceneChanged)
    Q_PROPERTY(QString verdict READ verdict NOTIFY sceneChanged)
    Q_PROPERTY(bool hidden READ hidden NOTIFY sceneChanged)
    Q_PROPERTY(bool running READ running NOTIFY searchChanged)
    Q_PROPERTY(QString progress READ progress NOTIFY searchChanged)
    Q_PROPERTY(QString remark READ remark NOTIFY searchChanged)
    Q_PROPERTY(bool buildings READ buildings WRITE setBuildings NOTIFY searchChanged)
    Q_PROPERTY(bool openTiles READ openTiles WRITE setOpenTiles NOTIFY settingsChanged)
    Q_PROPERTY(QString token READ token WRITE setToken NOTIFY settingsChanged)

public:
    HorizonView(rig::RigModel& rig, const ports::Ports& ports, LocationView& location, QObject* parent);

    /// Looks the terrain up for the site that is being chosen.
    Q_INVOKABLE void find();
    Q_INVOKABLE void cancel();
    /// The picture is looked at: it follows the site from now on.
    Q_INVOKABLE void open();
    Q_INVOKABLE void close() { shown_ = false; }

    const HorizonScene& scene() const { return scene_; }
    bool known() const { return !scene_.samples.empty(); }
    /// In one sentence, what the Sun's path over the terrain means.
    QString verdict() const { return verdict_; }
    bool hidden() const;
    bool running() const;
    QString progress() const;
    QString remark() const;
    bool buildings() const { return buildings_; }
    void setBuildings(bool wanted);
    /// The tiles that want no token.
    bool openTiles() const;
    void setOpenTiles(bool open);
    QString token() const;
    void setToken(const QString& token);

Q_SIGNALS:
    void sceneChanged();
    void searchChanged();
    void settingsChanged();

private:
    void look();
    QString verdictOf(const std::string& source) const;

    rig::RigModel& rig_;
    const ports::Ports& ports_;
    LocationView& location_;
    HorizonScene scene_;
    QString verdict_;
    bool shown_ = false;
    bool buildings_ = false;
};

} // namespace zenka::ui
