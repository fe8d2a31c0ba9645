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

class AppView;

/// The service that reports go to: its address, what the user lets be sent, and the question how far he
/// trusts the program. Asks once whether usage reports may be sent, when nothing else wants him.
class ServiceView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString address READ address WRITE setAddress NOTIFY changed)
    /// Its name for people; empty when none is set.
    Q_PROPERTY(QString host READ host NOTIFY changed)
    /// Usage reports are sent.
    Q_PROPERTY(bool allowed READ allowed WRITE setAllowed NOTIFY changed)
    /// Of a usage report, as it is sent.
    Q_PROPERTY(QString example READ example NOTIFY changed)
    /// The user's own, for an answer; kept until the program ends.
    Q_PROPERTY(QString email READ email WRITE setEmail NOTIFY emailChanged)
    Q_PROPERTY(bool asksForTrust READ asksForTrust NOTIFY changed)

public:
    ServiceView(services::ServiceDesk& desk, rig::RigModel& rig, AppView& app, QObject* parent);

    QString address() const;
    void setAddress(const QString& address);
    QString host() const;
    bool allowed() const;
    void setAllowed(bool allowed);
    QString example() const;
    const QString& email() const { return email_; }
    void setEmail(const QString& email);
    bool asksForTrust() const;

    /// Answers the sheet, and closes it.
    Q_INVOKABLE void answer(bool allowed);
    Q_INVOKABLE void rate(int score);
    Q_INVOKABLE void dismissTrust();

Q_SIGNALS:
    void changed();
    void emailChanged();

private:
    void soon();
    void look();
    void sheetChanged();

    services::ServiceDesk& desk_;
    rig::RigModel& rig_;
    AppView& app_;
    QString email_;
    bool asking_ = false; ///< the sheet has opened by itself and is not answered
};

} // namespace zenka::ui
