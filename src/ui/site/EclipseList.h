#pragma once

#include <QAbstractListModel>

#include <vector>

namespace zenka::rig {
class RigModel;
}

namespace zenka::eclipse {
struct EclipseRecord;
}

namespace zenka::ui {

/// The catalogue for a menu, by date, with a mark for the type.
class EclipseList : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int current READ current NOTIFY currentChanged)

public:
    enum Role { idRole = Qt::UserRole, labelRole, typeRole, notesRole };

    EclipseList(rig::RigModel& rig, QObject* parent);

    int current() const;
    Q_INVOKABLE void choose(int row);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void currentChanged();

private:
    rig::RigModel& rig_;
    std::vector<const eclipse::EclipseRecord*> rows_;
};

} // namespace zenka::ui
