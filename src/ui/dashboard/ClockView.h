#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>

namespace zenka::rig {
struct Countdown;
class RigModel;
} // namespace zenka::rig

namespace zenka::ui {

/// The eclipse clock for the eye: what comes next and in how long, the contacts, the times of day, and the
/// state of the transport.
class ClockView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString siteTime READ siteTime NOTIFY ticked)
    Q_PROPERTY(QString zoneName READ zoneName NOTIFY ticked)
    Q_PROPERTY(QString utcTime READ utcTime NOTIFY ticked)
    Q_PROPERTY(QString siteLabel READ siteLabel NOTIFY placed)
    Q_PROPERTY(QString sitePosition READ sitePosition NOTIFY placed)
    Q_PROPERTY(QString eclipseName READ eclipseName NOTIFY placed)
    Q_PROPERTY(bool live READ live NOTIFY stateChanged)
    Q_PROPERTY(bool playing READ playing NOTIFY stateChanged)
    Q_PROPERTY(bool runActive READ runActive NOTIFY stateChanged)
    Q_PROPERTY(QString modeWord READ modeWord NOTIFY stateChanged)
    Q_PROPERTY(QString statusText READ statusText NOTIFY stateChanged)
    Q_PROPERTY(QString countdownTitle READ countdownTitle NOTIFY ticked)
    Q_PROPERTY(QString countdown READ countdown NOTIFY ticked)
    Q_PROPERTY(bool lastMinute READ lastMinute NOTIFY ticked)
    Q_PROPERTY(bool inTotality READ inTotality NOTIFY ticked)
    Q_PROPERTY(QString phaseText READ phaseText NOTIFY placed)
    Q_PROPERTY(QVariantList contacts READ contacts NOTIFY placed)
    Q_PROPERTY(QString nextContact READ nextContact NOTIFY ticked)
    Q_PROPERTY(QString nextShot READ nextShot NOTIFY ticked)

public:
    ClockView(rig::RigModel& rig, QObject* parent);

    QString siteTime() const;
    QString zoneName() const;
    QString utcTime() const;
    QString siteLabel() const;
    QString sitePosition() const;
    QString eclipseName() const;
    bool live() const;
    bool playing() const;
    bool runActive() const;
    QString modeWord() const;
    QString statusText() const;

    /// "C2 in", "totality ends in", "C4 was", and the digits under it.
    QString countdownTitle() const;
    QString countdown() const;
    bool lastMinute() const;
    bool inTotality() const;

    /// The central phase and the magnitude at this site in words.
    QString phaseText() const;
    /// A row a contact: key, time, altitude, azimuth, words for a Sun that is down.
    QVariantList contacts() const;
    QString nextContact() const;
    /// The next frame and in how long.
    QString nextShot() const;

    Q_INVOKABLE bool jumpToLocalTime(const QString& text);
    /// A typed time of day so many seconds on; the text as it is when it is none.
    Q_INVOKABLE static QString nudged(const QString& time, int seconds);
    Q_INVOKABLE void jumpToContact(const QString& key);

Q_SIGNALS:
    void ticked();
    void placed();
    void stateChanged();

private:
    rig::Countdown next() const;

    rig::RigModel& rig_;
};

} // namespace zenka::ui
