#pragma once

#include <QObject>
#include <QString>

namespace zenka::rig {
class RigModel;
struct CadenceAlert;
} // namespace zenka::rig

namespace zenka::ui {

class AppView;

/// Arming the live run, behind the deliberate act that its sheet asks for.
class ArmView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString tooTight READ tooTight NOTIFY changed)

public:
    ArmView(rig::RigModel& rig, AppView& app, QObject* parent);

    /// Why frames of the script may drop on a body of which that is only guessed; empty for no reason.
    Q_INVOKABLE QString estimate() const;
    /// Why arming was held back: a body was measured to be slower than the script. Empty when it was not.
    QString tooTight() const;

    /// Arms, unless there is a reason to hold it back; then the sheet stays open and shows it.
    Q_INVOKABLE void arm();
    Q_INVOKABLE void armAnyway();
    Q_INVOKABLE void editScript();
    Q_INVOKABLE void measure();

Q_SIGNALS:
    void changed();

private:
    rig::RigModel& rig_;
    AppView& app_;
};

} // namespace zenka::ui
