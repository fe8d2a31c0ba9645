#pragma once

#include "ui/bodies/GapLadder.h"
#include "ui/kit/BodyChoice.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <optional>
#include <string>
#include <vector>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// Measuring how fast one body really fires: what to measure, how it goes, what came of it.
class GapProfilerView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString page READ page NOTIFY changed)
    Q_PROPERTY(bool running READ running NOTIFY changed)
    Q_PROPERTY(QString bodyId READ bodyId NOTIFY changed)
    Q_PROPERTY(QString bodyName READ bodyName NOTIFY changed)
    Q_PROPERTY(bool burst READ burst WRITE setBurst NOTIFY changed)
    Q_PROPERTY(bool changing READ changing WRITE setChanging NOTIFY changed)
    Q_PROPERTY(QStringList shutters READ shutters CONSTANT)
    Q_PROPERTY(int shutter READ shutter WRITE setShutter NOTIFY changed)
    Q_PROPERTY(QString cadence READ cadence WRITE setCadence NOTIFY changed)
    Q_PROPERTY(QString cadenceFault READ cadenceFault NOTIFY changed)
    Q_PROPERTY(QString plan READ plan NOTIFY changed)
    Q_PROPERTY(QString refusal READ refusal NOTIFY changed)
    Q_PROPERTY(QString progress READ progress NOTIFY changed)
    Q_PROPERTY(QAbstractListModel* ladder READ ladder CONSTANT)
    Q_PROPERTY(int burstFrames READ burstFrames NOTIFY changed)
    Q_PROPERTY(QString burstMarks READ burstMarks NOTIFY changed)
    Q_PROPERTY(int firstMiss READ firstMiss NOTIFY changed)
    Q_PROPERTY(QString burstText READ burstText NOTIFY changed)
    Q_PROPERTY(QString verdict READ verdict NOTIFY changed)
    Q_PROPERTY(QString storedTitle READ storedTitle NOTIFY storedChanged)
    Q_PROPERTY(QVariantList stored READ stored NOTIFY storedChanged)
    Q_PROPERTY(QString meaning READ meaning NOTIFY storedChanged)
    Q_PROPERTY(QVariantList history READ history NOTIFY historyChanged)

public:
    GapProfilerView(rig::RigModel& rig, QObject* parent);

    /// The sheet is shown.
    Q_INVOKABLE void open();
    /// The body that the next profile is for; puts away what came of the last one. Not while one is running.
    Q_INVOKABLE void choose(const QString& cameraId);
    Q_INVOKABLE void start();
    Q_INVOKABLE void stop();
    /// Back from what came of the last profile to the next one.
    Q_INVOKABLE void again();
    /// The typing in the cadence is over: what cannot be read is told.
    Q_INVOKABLE void check();

    /// "setup", "running" or "result"
    QString page() const;
    bool running() const;
    /// The body that is chosen; that of the profile which is running or is shown.
    QString bodyId() const;
    QString bodyName() const;

    bool burst() const;
    void setBurst(bool burst);
    bool changing() const;
    void setChanging(bool changing);
    /// The shutters of long frames, the first one for none.
    QStringList shutters() const;
    int shutter() const;
    void setShutter(int row);
    /// Seconds as typed; empty for a cadence that suits the body.
    QString cadence() const { return cadence_; }
    void setCadence(const QString& text);
    QString cadenceFault() const { return cadenceFault_; }
    /// What the profile will do to the body and its card.
    QString plan() const;
    /// Why the last press on Start did nothing; empty when it did.
    QString refusal() const { return refusal_; }

    QString progress() const;
    GapLadder* ladder() const { return ladder_; }
    /// Of the burst that is running or is shown; 0 where it is none.
    int burstFrames() const;
    QString burstMarks() const;
    /// The place of the first frame that was missing, from 0; -1 for none.
    int firstMiss() const;
    QString burstText() const;
    QString verdict() const;

    /// What is known of bodies of this model: rows of name, value, and the value before the profile where
    /// that has changed it.
    QString storedTitle() const;
    QVariantList stored() const;
    /// What it means for scripts.
    QString meaning() const;
    /// Rows of time, name, kind and verdict, the last one first.
    QVariantList history() const;

Q_SIGNALS:
    void changed();
    void storedChanged();
    void historyChanged();

private:
    struct Floor {
        QString name;
        QString value;
    };

    double planned() const;
    std::vector<Floor> floorsOf(const std::string& model) const;
    void follow();
    void runningChanged(bool running);

    rig::RigModel& rig_;
    BodyChoice body_;
    GapLadder* ladder_;
    FrameMarks burstMarks_;
    QString cadence_;
    QString cadenceFault_;
    QString refusal_;
    bool stopping_ = false;
    bool showsResult_ = false;
    bool shownBurst_ = false;
    QString shownName_; // of the profile that is running or is shown
    std::string shownModel_;
    std::vector<Floor> before_; // the floors of that model when it began
};

} // namespace zenka::ui
