#pragma once

#include <QObject>
#include <QVariantList>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// The condition of the computer: a chip, and what it opens.
class HealthView : public QObject {
    Q_OBJECT
    /// "✓ OK", "▲ battery 38 %", "■ heat critical"
    Q_PROPERTY(QString text READ text NOTIFY changed)
    /// "✓", "▲ 38 %": for a narrow window
    Q_PROPERTY(QString brief READ brief NOTIFY changed)
    Q_PROPERTY(QString symbol READ symbol NOTIFY changed)
    /// "good", "warning", "critical"
    Q_PROPERTY(QString severity READ severity NOTIFY changed)
    /// Rows of name and value.
    Q_PROPERTY(QVariantList rows READ rows NOTIFY changed)

public:
    HealthView(rig::RigModel& rig, QObject* parent);

    QString text() const;
    QString brief() const;
    QString symbol() const;
    QString severity() const;
    QVariantList rows() const;

Q_SIGNALS:
    void changed();

private:
    rig::RigModel& rig_;
};

} // namespace zenka::ui
