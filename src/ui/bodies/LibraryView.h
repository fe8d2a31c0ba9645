#pragma once

#include <QAbstractListModel>
#include <QString>

#include <vector>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// The bodies that the operator's library knows, here or not, a row each.
class LibraryView : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(QString summary READ summary NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
    Q_PROPERTY(QString undoText READ undoText NOTIFY changed)

public:
    enum Role {
        serialRole = Qt::UserRole,
        labelRole,
        modelRole,
        lensRole,
        lensFaultRole, ///< why the lens cannot be changed; empty when it can
        connectedRole,
        stateRole ///< "● connected"
    };

    LibraryView(rig::RigModel& rig, QObject* parent);

    /// "3 bodies, 1 not connected"; empty for none
    QString summary() const;
    QString emptyText() const;
    /// "CAM1 forgotten." for the body that undoForget() brings back; empty for none.
    QString undoText() const;

    /// An empty one takes it away.
    Q_INVOKABLE void setLens(const QString& serial, const QString& lens);
    Q_INVOKABLE void forget(const QString& serial);
    Q_INVOKABLE void undoForget();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void changed();

private:
    struct Row {
        QString serial, label, model, lens, lensFault;
        bool connected = false;

        friend bool operator==(const Row&, const Row&) = default;
    };

    std::vector<Row> makeRows() const;
    void refresh();

    rig::RigModel& rig_;
    std::vector<Row> rows_;
};

} // namespace zenka::ui
