#include "ui/bodies/GapLadder.h"

#include "rig/shots/GapVerdicts.h"
#include "rig/shots/QuickFloor.h"

#include <algorithm>
#include <utility>

namespace zenka::ui {

using rig::GapProfileRow;

namespace {

QString intervalText(double seconds) {
    return QString::fromStdString(rig::GapVerdicts::fmtInterval(seconds)) + QStringLiteral(" s");
}

/// A body that does not hold the slowest rung of the fast ladder is tried on the slow one.
bool isSlow(const std::vector<GapProfileRow>& done) {
    return !done.empty() && !done.front().clean();
}

/// The rungs behind those that were begun.
std::span<const double> toCome(const std::vector<GapProfileRow>& done, bool oneUnderWay) {
    const auto ladder = isSlow(done) ? rig::QuickFloor::slowLadder() : rig::QuickFloor::fastLadder();
    const std::size_t begun = done.size() + (oneUnderWay ? 1 : 0) - (isSlow(done) ? 1 : 0);
    return ladder.subspan(std::min(begun, ladder.size()));
}

QString wordOf(const GapProfileRow& rung) {
    QStringList words;
    if (rung.dropped > 0)
        words.append(QStringLiteral("▲ %1 dropped").arg(rung.dropped));
    if (rung.noResp > 0)
        words.append(QStringLiteral("? %1 silent").arg(rung.noResp));
    if (!words.isEmpty())
        return words.join(QStringLiteral(", "));
    if (!rung.clean())
        return QStringLiteral("◆ slower than asked");
    return rung.paced() ? QStringLiteral("✓ clean, at its own pace") : QStringLiteral("✓ clean");
}

QString inWords(const GapLadderRow& row, const GapProfileRow& rung) {
    QString words = QStringLiteral("A frame every %1: %2 ok").arg(row.interval).arg(rung.ok);
    if (rung.dropped > 0)
        words += QStringLiteral(", %1 dropped").arg(rung.dropped);
    if (rung.noResp > 0)
        words += QStringLiteral(", %1 not answered").arg(rung.noResp);
    if (!row.latency.isEmpty())
        words += QStringLiteral(", answered in %1").arg(row.latency);
    if (!row.spacing.isEmpty())
        words += QStringLiteral(", came every %1").arg(row.spacing);
    return words;
}

} // namespace

void FrameMarks::take(int ok, int dropped, int silent) {
    const auto fill = [this](QChar sign, int count) {
        const auto missing = count - marks_.count(sign);
        if (missing > 0)
            marks_ += QString(missing, sign);
    };
    fill(u'●', ok);
    fill(u'▲', dropped);
    fill(u'?', silent);
}

QString FrameMarks::text(int frames) const {
    return marks_.leftJustified(frames, u'·');
}

int GapLadder::mostFrames() {
    const std::size_t fast = rig::QuickFloor::fastLadder().size();
    const std::size_t slow = 1 + rig::QuickFloor::slowLadder().size();
    return static_cast<int>(std::max(fast, slow)) * framesPerRung;
}

void GapLadder::clear() {
    marked_.clear();
    setRows({});
}

QString GapLadder::marksOf(const GapProfileRow& rung) {
    auto its = std::ranges::find(marked_, rung.id, &Marked::id);
    if (its == marked_.end())
        its = marked_.insert(marked_.end(), {.id = rung.id, .marks = {}});
    its->marks.take(rung.ok, rung.dropped, rung.noResp);
    return its->marks.text(framesPerRung);
}

GapLadderRow GapLadder::rowOf(const GapProfileRow& rung, bool underWay) {
    GapLadderRow row{.interval = intervalText(rung.intervalSec), .marks = marksOf(rung)};
    row.word = underWay ? QStringLiteral("under way") : wordOf(rung);
    row.state = underWay          ? QStringLiteral("now")
                : rung.clean()    ? QStringLiteral("good")
                : rung.complete() ? QStringLiteral("slow")
                                  : QStringLiteral("bad");
    if (rung.ok > 0)
        row.latency = QStringLiteral("%1 ms").arg(rung.avgLatencyMs, 0, 'f', 0);
    if (rung.achievedSec)
        row.spacing = QStringLiteral("%1 s").arg(*rung.achievedSec, 0, 'f', 2);
    row.words = inWords(row, rung) + (underWay ? QStringLiteral(", under way") : QString());
    return row;
}

void GapLadder::show(const std::vector<GapProfileRow>& done, const std::optional<GapProfileRow>& underWay,
                     bool going) {
    std::vector<GapLadderRow> rows;
    rows.reserve(done.size());
    for (const GapProfileRow& rung : done)
        rows.push_back(rowOf(rung, false));
    if (underWay)
        rows.push_back(rowOf(*underWay, true));
    if (going) {
        for (const double interval : toCome(done, underWay.has_value())) {
            const QString text = intervalText(interval);
            rows.push_back({.interval = text,
                            .marks = FrameMarks().text(framesPerRung),
                            .word = {},
                            .state = QStringLiteral("next"),
                            .latency = {},
                            .spacing = {},
                            .words = QStringLiteral("A frame every %1: to come").arg(text)});
        }
    }
    setRows(std::move(rows));
}

QString GapLadder::progress(const std::vector<GapProfileRow>& done,
                            const std::optional<GapProfileRow>& underWay) {
    if (!underWay)
        return QStringLiteral("No answer to a whole rung: checking the link to the body…");
    const bool slow = isSlow(done);
    const std::size_t all = (slow ? rig::QuickFloor::slowLadder() : rig::QuickFloor::fastLadder()).size();
    return QStringLiteral("%1 %2 of %3, a frame every %4: frame %5 of %6")
        .arg(slow ? QStringLiteral("Slow rung") : QStringLiteral("Rung"))
        .arg(done.size() + (slow ? 0 : 1))
        .arg(all)
        .arg(intervalText(underWay->intervalSec))
        .arg(std::min(underWay->frames + 1, framesPerRung))
        .arg(framesPerRung);
}

QVariant GapLadder::valueOf(const GapLadderRow& row, int role) const {
    switch (role) {
    case intervalRole: return row.interval;
    case marksRole: return row.marks;
    case wordRole: return row.word;
    case stateRole: return row.state;
    case latencyRole: return row.latency;
    case spacingRole: return row.spacing;
    case Qt::DisplayRole:
    case wordsRole: return row.words;
    default: return {};
    }
}

QHash<int, QByteArray> GapLadder::roleNames() const {
    return {{intervalRole, "interval"}, {marksRole, "marks"},     {wordRole, "word"},
            {stateRole, "rungState"},   {latencyRole, "latency"}, {spacingRole, "achieved"},
            {wordsRole, "words"}};
}

} // namespace zenka::ui
