#pragma once

#include "rig/checks/PreflightChecks.h"
#include "ui/kit/RowList.h"

#include <QString>

#include <functional>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

class AppView;

/// The list of what could spoil the run, as it changes while it is looked at.
class PreflightView : public RowList<rig::PreflightCheck> {
    Q_OBJECT
    /// "■ 1 to mend · ▲ 3 to look at · ✓ 8 fine"
    Q_PROPERTY(QString summary READ summary NOTIFY changed)
    Q_PROPERTY(QString place READ place NOTIFY changed)
    Q_PROPERTY(bool fails READ fails NOTIFY changed)
    Q_PROPERTY(bool mayProceed READ mayProceed NOTIFY changed)

public:
    enum Role { titleRole = Qt::UserRole, detailRole, symbolRole, wordRole, statusRole };

    PreflightView(rig::RigModel& rig, AppView& app, QObject* parent);

    QString summary() const;
    QString place() const;
    bool fails() const;
    bool mayProceed() const;

    /// What a list with nothing wrong goes on to.
    void openArming();
    Q_INVOKABLE void recheck();
    Q_INVOKABLE void proceed();

    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void changed();

protected:
    QVariant valueOf(const rig::PreflightCheck& row, int role) const override;

private:
    void later(const std::function<void()>& what);
    void follow();
    void soon();
    void refresh();
    qsizetype countOf(rig::PreflightStatus status) const;

    rig::RigModel& rig_;
    AppView& app_;
    bool waiting_ = false; // for a refresh that is under way
};

} // namespace zenka::ui
