#pragma once

#include <QObject>
#include <QString>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

class AppView;

/// The commands of the script that came with its file and wait for the user's yes. Opens its sheet when such
/// a file is opened.
class ConsentView : public QObject {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(QString question READ question NOTIFY changed)
    Q_PROPERTY(QString commands READ commands NOTIFY changed)
    Q_PROPERTY(bool canAllow READ canAllow NOTIFY changed)

public:
    ConsentView(rig::RigModel& rig, AppView& app, QObject* parent);

    int count() const;
    QString question() const;
    /// A line for each, with what is invisible in it laid open.
    QString commands() const;
    bool canAllow() const;

    Q_INVOKABLE void allow();

Q_SIGNALS:
    void changed();

private:
    rig::RigModel& rig_;
    AppView& app_;
};

} // namespace zenka::ui
