#pragma once

#include <QObject>
#include <QString>

namespace zenka::rig {
class RigModel;
}

namespace zenka::services {
class ServiceDesk;
}

namespace zenka::ui {

/// Sends what a body was found to offer to the service.
class ProfilePostView : public QObject {
    Q_OBJECT
    /// There is a profile, and somebody to send it to.
    Q_PROPERTY(bool possible READ possible NOTIFY changed)
    /// At first what the operator's library knows.
    Q_PROPERTY(QString lens READ lens WRITE setLens NOTIFY changed)
    Q_PROPERTY(bool sending READ sending NOTIFY changed)
    /// What came of it; empty before.
    Q_PROPERTY(QString words READ words NOTIFY changed)
    Q_PROPERTY(bool failed READ failed NOTIFY changed)

public:
    ProfilePostView(services::ServiceDesk& desk, rig::RigModel& rig, QObject* parent);

    bool possible() const;
    const QString& lens() const { return lens_; }
    void setLens(const QString& lens);
    bool sending() const { return sending_; }
    const QString& words() const { return words_; }
    bool failed() const { return failed_; }

    /// With an address for an answer, or without.
    Q_INVOKABLE void send(const QString& email);

Q_SIGNALS:
    void changed();

private:
    void profileRead();

    services::ServiceDesk& desk_;
    rig::RigModel& rig_;
    QString lens_;
    int profile_ = 0; ///< an answer on an earlier one is passed over
    bool sending_ = false;
    QString words_;
    bool failed_ = false;
};

} // namespace zenka::ui
