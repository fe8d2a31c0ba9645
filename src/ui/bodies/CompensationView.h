#pragma once

#include <QAbstractListModel>
#include <QString>

#include <vector>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// Live exposure compensation, a row for each camera of the script and each body beside them.
class CompensationView : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(QString summary READ summary NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
    Q_PROPERTY(bool active READ active NOTIFY changed)
    Q_PROPERTY(bool leaveTotalityAlone READ leaveTotalityAlone WRITE setLeaveTotalityAlone NOTIFY changed)

public:
    enum Role {
        tokenRole = Qt::UserRole,
        onRole,
        partialsRole, ///< stops as text, "+1"
        totalityRole,
        linkedRole,
        hasRulesRole,
        gapsRole, ///< where the spacing that limits the shutter is from
        nextRole, ///< the next frame as the script has it, and as it would go out
        noteRole  ///< what moves, and why not more
    };

    CompensationView(rig::RigModel& rig, QObject* parent);

    /// "EV 0", "EV CAM1 +1"
    QString summary() const;
    QString emptyText() const;
    bool active() const;
    bool leaveTotalityAlone() const;
    void setLeaveTotalityAlone(bool alone);

    /// False for a camera that has no rules yet.
    Q_INVOKABLE bool setOn(const QString& token, bool on);
    Q_INVOKABLE void nudgePartials(const QString& token, int by);
    Q_INVOKABLE void nudgeTotality(const QString& token, int by);
    Q_INVOKABLE void setLinked(const QString& token, bool linked);
    Q_INVOKABLE void nudgeAll(int by);
    Q_INVOKABLE void reset();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void changed();

private:
    struct Row {
        QString token, partials, totality, gaps, next, note;
        bool on = false;
        bool linked = false;
        bool hasRules = false;

        friend bool operator==(const Row&, const Row&) = default;
    };

    Row rowOf(const std::string& token) const;
    void refresh();

    rig::RigModel& rig_;
    std::vector<Row> rows_;
};

} // namespace zenka::ui
