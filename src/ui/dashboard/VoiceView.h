#pragma once

#include <QObject>
#include <QStringList>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// What is spoken, by which voice, and of what batteries one wants to hear.
class VoiceView : public QObject {
    Q_OBJECT
    /// What is being spoken; empty between utterances.
    Q_PROPERTY(QString saying READ saying NOTIFY sayingChanged)
    Q_PROPERTY(bool cues READ cues WRITE setCues NOTIFY changed)
    /// Names; the first is Zenka's own choice.
    Q_PROPERTY(QStringList voices READ voices NOTIFY changed)
    Q_PROPERTY(int voice READ voice WRITE setVoice NOTIFY changed)
    Q_PROPERTY(QString lowBattery READ lowBattery NOTIFY changed)
    Q_PROPERTY(bool lowBatteryAudio READ lowBatteryAudio WRITE setLowBatteryAudio NOTIFY changed)
    Q_PROPERTY(
        bool criticalBatteryAudio READ criticalBatteryAudio WRITE setCriticalBatteryAudio NOTIFY changed)

public:
    VoiceView(rig::RigModel& rig, QObject* parent);

    QString saying() const;
    bool cues() const;
    void setCues(bool on);
    QStringList voices() const;
    int voice() const;
    void setVoice(int row);
    QString lowBattery() const;
    bool lowBatteryAudio() const;
    void setLowBatteryAudio(bool on);
    bool criticalBatteryAudio() const;
    void setCriticalBatteryAudio(bool on);

    /// The settings are looked at: the voices are asked for.
    Q_INVOKABLE void open();
    Q_INVOKABLE void test();
    /// Takes a percentage that was typed; what is none changes nothing.
    Q_INVOKABLE void typeLowBattery(const QString& text);

Q_SIGNALS:
    void changed();
    void sayingChanged();

private:
    rig::RigModel& rig_;
};

} // namespace zenka::ui
