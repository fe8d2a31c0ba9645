#pragma once

#include <QObject>
#include <QVariantList>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// The small signs of the top bar: what the machine does for the run. Only what holds is shown.
class ChipsView : public QObject {
    Q_OBJECT
    /// A row a chip: symbol, text, words (a whole sentence).
    Q_PROPERTY(QVariantList rows READ rows NOTIFY changed)

public:
    ChipsView(rig::RigModel& rig, QObject* parent);

    QVariantList rows() const;

Q_SIGNALS:
    void changed();

private:
    rig::RigModel& rig_;
};

} // namespace zenka::ui
