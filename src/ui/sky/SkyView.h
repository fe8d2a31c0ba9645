#pragma once

#include "ui/sky/SkyScene.h"

#include <QObject>
#include <QString>

namespace zenka::ports {
struct Ports;
}

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// The sky at the clock: the picture's scene, and what it is in words and numbers.
class SkyView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString phaseText READ phaseText NOTIFY changed)
    Q_PROPERTY(QString numbersText READ numbersText NOTIFY changed)
    Q_PROPERTY(QString magnitudeText READ magnitudeText NOTIFY changed)
    Q_PROPERTY(QString obscurationText READ obscurationText NOTIFY changed)
    Q_PROPERTY(QString altitudeText READ altitudeText NOTIFY changed)
    Q_PROPERTY(QString azimuthText READ azimuthText NOTIFY changed)
    Q_PROPERTY(QString noteText READ noteText NOTIFY changed)
    Q_PROPERTY(QString spokenText READ spokenText NOTIFY changed)

public:
    SkyView(rig::RigModel& rig, const ports::Ports& ports, QObject* parent);

    const SkyScene& scene() const { return scene_; }

    /// Where between the contacts the clock stands: "Partial, the Moon moves in".
    QString phaseText() const;
    QString magnitudeText() const;
    QString obscurationText() const;
    QString altitudeText() const;
    QString azimuthText() const;
    /// The four in one line.
    QString numbersText() const;
    /// What stands in the photographer's way here: no eclipse, no totality, the Sun down; else empty.
    QString noteText() const;
    /// All of it, for a screen reader.
    QString spokenText() const;

Q_SIGNALS:
    void changed();

private:
    void refresh();
    bool reached(const char* contact) const;

    rig::RigModel& rig_;
    double clock_ = 0;
    SkyScene scene_;
};

} // namespace zenka::ui
