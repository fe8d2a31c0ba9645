#pragma once

#include "cameras/FramingRecord.h"

#include <QString>
#include <QVariantMap>

namespace zenka::ui {

/// The numbers of a framing as they are typed, by the names of their fields: "focal", "rotation", "ownWidth",
/// "ownHeight", "ownWidthPx", "ownHeightPx".
class FramingFields {
public:
    /// Shows what a record says.
    void fill(const cameras::FramingRecord& record, const cameras::Sensor& sensor);
    /// Takes a text, and puts it into the record where it can be read; true when the record changed.
    bool type(const QString& field, const QString& text, cameras::FramingRecord& record);
    /// A step of the field's number, up or down; true when the record changed.
    bool nudge(const QString& field, int steps, cameras::FramingRecord& record);
    /// The typing is over: what cannot be read is told.
    void check(const cameras::FramingRecord& record);

    const QVariantMap& texts() const { return texts_; }
    const QVariantMap& faults() const { return faults_; }

    /// Millimetres, ascending.
    static const std::vector<double>& usualFocals();

private:
    std::optional<double> number(const QString& field) const;
    bool take(const QString& field, cameras::FramingRecord& record) const;

    QVariantMap texts_;
    QVariantMap faults_;
};

} // namespace zenka::ui
