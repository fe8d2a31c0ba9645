#pragma once

#include "rig/shots/GapProfile.h"
#include "rig/shots/QuickFloor.h"
#include "ui/kit/RowList.h"

#include <QString>

#include <optional>
#include <span>
#include <vector>

namespace zenka::ui {

/// Frames as signs, in the order in which they came: ● ok, ▲ dropped, ? no answer, and · for those to come.
class FrameMarks {
public:
    /// How many there are by now. The engine counts; what has been added is new.
    void take(int ok, int dropped, int silent);
    /// Filled up with those to come.
    QString text(int frames) const;
    int count() const { return static_cast<int>(marks_.size()); }

private:
    QString marks_;
};

struct GapLadderRow {
    QString interval; ///< "0.33 s"
    QString marks;    ///< a sign for each frame
    QString word;     ///< what came of it: "✓ clean", "▲ 2 dropped"; empty for a rung to come
    QString state;    ///< "good", "bad", "slow", "now", "next"
    QString latency;  ///< "212 ms", empty where nothing was ok
    QString spacing;  ///< "0.40 s", empty for fewer than two frames
    QString words;    ///< all of it in words

    friend bool operator==(const GapLadderRow&, const GapLadderRow&) = default;
};

/// The rungs of a profile as they are climbed: those done, the one under way, those to come.
class GapLadder : public RowList<GapLadderRow> {
    Q_OBJECT

public:
    enum Role {
        intervalRole = Qt::UserRole,
        marksRole,
        wordRole,
        stateRole,
        latencyRole,
        spacingRole,
        wordsRole
    };

    using RowList::RowList;

    /// Frames that a rung has.
    static constexpr int framesPerRung = rig::QuickFloor::framesPerRung;
    /// The most that a whole profile fires.
    static int mostFrames();

    void clear();
    /// `going` is false for a profile that is over: nothing is to come.
    void show(const std::vector<rig::GapProfileRow>& done, const std::optional<rig::GapProfileRow>& underWay,
              bool going);

    /// "Rung 3 of 11, a frame every 0.6 s: frame 4 of 6"
    static QString progress(const std::vector<rig::GapProfileRow>& done,
                            const std::optional<rig::GapProfileRow>& underWay);

    QHash<int, QByteArray> roleNames() const override;

private:
    struct Marked {
        base::Uuid id;
        FrameMarks marks;
    };

    QVariant valueOf(const GapLadderRow& row, int role) const override;
    QString marksOf(const rig::GapProfileRow& rung);
    GapLadderRow rowOf(const rig::GapProfileRow& rung, bool underWay);

    std::vector<Marked> marked_;
};

} // namespace zenka::ui
