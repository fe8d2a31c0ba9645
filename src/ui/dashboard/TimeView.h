#pragma once

#include "gps/GPSFix.h"

#include <QObject>
#include <QStringList>

#include <optional>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// What the computer's clock is worth: the chips of clock and satellite receiver, and what they open.
class TimeView : public QObject {
    Q_OBJECT
    /// "◷ GPS +5.0 s", "◷ net +1 s", "◷ unchecked"
    Q_PROPERTY(QString clockText READ clockText NOTIFY changed)
    /// The same without the source: "◷ +5.0 s", "◷ ?"
    Q_PROPERTY(QString clockBrief READ clockBrief NOTIFY changed)
    Q_PROPERTY(bool clockIsOff READ clockIsOff NOTIFY changed)
    /// What the source is worth, and what the clock is by it.
    Q_PROPERTY(QString clockWords READ clockWords NOTIFY changed)
    /// What the system's time service says of itself; empty when it cannot be asked.
    Q_PROPERTY(QString serviceWords READ serviceWords NOTIFY changed)
    Q_PROPERTY(QString checkWords READ checkWords NOTIFY changed)
    Q_PROPERTY(bool checking READ checking NOTIFY changed)
    Q_PROPERTY(QString server READ server WRITE setServer NOTIFY changed)
    Q_PROPERTY(bool gpsConnected READ gpsConnected NOTIFY changed)
    Q_PROPERTY(bool gpsLocked READ gpsLocked NOTIFY changed)
    Q_PROPERTY(QString gpsText READ gpsText NOTIFY changed)
    Q_PROPERTY(QString gpsTip READ gpsTip NOTIFY changed)
    Q_PROPERTY(QStringList gpsLines READ gpsLines NOTIFY changed)
    /// For the sheet of the site; empty without a receiver.
    Q_PROPERTY(QString gpsSiteLine READ gpsSiteLine NOTIFY changed)
    Q_PROPERTY(bool hasPosition READ hasPosition NOTIFY changed)

public:
    TimeView(rig::RigModel& rig, QObject* parent);

    QString clockText() const;
    QString clockBrief() const;
    bool clockIsOff() const;
    QString clockWords() const;
    QString serviceWords() const;
    QString checkWords() const;
    bool checking() const;
    QString server() const;
    void setServer(const QString& address);
    bool gpsConnected() const;
    bool gpsLocked() const;
    QString gpsText() const;
    QString gpsTip() const;
    QStringList gpsLines() const;
    QString gpsSiteLine() const;
    bool hasPosition() const;

    Q_INVOKABLE void checkAgain();
    /// Stands where the receiver is.
    Q_INVOKABLE void usePosition();

Q_SIGNALS:
    void changed();

private:
    /// What is known of the receiver; nothing as long as it has no lock.
    std::optional<gps::GPSFix> lock() const;

    rig::RigModel& rig_;
};

} // namespace zenka::ui
