#pragma once

#include "ui/framing/FramedBodies.h"
#include "ui/framing/FramingWords.h"
#include "ui/kit/RowList.h"

#include <optional>
#include <vector>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// The bursts of a body and how far the Sun goes in each, a row each. Frames that stand alone are only
/// counted.
class FramingBursts : public RowList<BurstRow> {
    Q_OBJECT

public:
    enum Role {
        titleRole = Qt::UserRole,
        factsRole,
        driftRole,
        trailRole,
        warningRole,
        levelRole,
        pickedRole
    };

    FramingBursts(rig::RigModel& rig, QObject* parent) : RowList(parent), rig_(rig) {}

    /// Works the rows out for a body; the camera is aimed at the maximum, or at each burst's first frame.
    void look(const FramedBody& body, const FramingFrame& frame, bool aimedAtMax);
    /// False for a row that there is not.
    bool pick(int row);
    /// The burst that the picture shows: at first the one around the maximum.
    std::optional<script::Burst> picked() const;
    /// What there is besides the rows.
    const QString& text() const { return text_; }

    QHash<int, QByteArray> roleNames() const override;

private:
    QVariant valueOf(const BurstRow& row, int role) const override;
    /// Whether totality has a row of its own, the first one.
    bool find(const std::vector<script::Burst>& all, const std::vector<std::string>& tokens);

    rig::RigModel& rig_;
    std::vector<script::Burst> bursts_; ///< of several frames
    std::optional<std::size_t> picked_;
    QString text_;
};

} // namespace zenka::ui
