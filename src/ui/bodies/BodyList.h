#pragma once

#include "ui/kit/RowList.h"

#include <QString>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

struct BodyRow {
    QString id, label, model;
    QString driver; ///< "gphoto2 usb:001,004", "simulated"
    QString fault;  ///< why it can be asked for nothing now, a few words; empty when it can

    friend bool operator==(const BodyRow&, const BodyRow&) = default;
};

/// The bodies of the rig to pick one from, simulated ones too.
class BodyList : public RowList<BodyRow> {
    Q_OBJECT

public:
    enum Role { idRole = Qt::UserRole, labelRole, modelRole, driverRole, faultRole };

    BodyList(rig::RigModel& rig, QObject* parent);

    QHash<int, QByteArray> roleNames() const override;

private:
    QVariant valueOf(const BodyRow& row, int role) const override;
    void refresh();

    rig::RigModel& rig_;
};

} // namespace zenka::ui
