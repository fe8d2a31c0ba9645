#include "ui/kit/LogView.h"

#include "ui/kit/Observe.h"

#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>
#include <array>
#include <ranges>

namespace zenka::ui {

namespace {

struct Mark {
    const char* begins; ///< of a line, UTF-8
    const char* symbol;
    const char* state;
};

/// The first words or signs of the lines of the rig. Signs that fonts draw as coloured pictures have a plain
/// shape here: at night no other colour than red may be on the screen.
constexpr std::array<Mark, 25> lineMarks{{{"⚠️ DROPPED", "▲", "dropped"},
                                          {"⏭ SKIPPED", "»", "skipped"},
                                          {"⏭", "»", "skipped"},
                                          {"⚠️", "⚠", "warning"},
                                          {"⚠︎", "⚠", "warning"},
                                          {"⚠", "⚠", "warning"},
                                          {"●", "●", "fired"},
                                          {"🔊", "♪", "cue"},
                                          {"⚙︎", "⚙", "command"},
                                          {"▶︎", "▶", "run"},
                                          {"■", "■", "run"},
                                          {"☕︎", "☼", "awake"},
                                          {"📅", "▣", "eclipse day"},
                                          {"📝", "✎", "run log"},
                                          {"💾", "▤", "card"},
                                          {"🛑", "■", "warning"},
                                          {"✅", "✓", "good"},
                                          {"🔌", "↻", "run"},
                                          {"⏱", "◷", "measured"},
                                          {"✓", "✓", "good"},
                                          {"‼️", "■", "critical"},
                                          {"🔋", "▲", "battery"},
                                          {"🔇", "⊘", "not heard"},
                                          {"🛰", "◉", "receiver"},
                                          {"⛔️", "■", "refused"}}};

/// Without the signs that fonts have as coloured pictures alone, and without the selectors between a sign's
/// shape and its picture.
QString withoutPictures(const QString& text) {
    QString plain;
    for (const char32_t letter : text.toUcs4()) {
        const bool picture = letter >= 0x1F000 && letter <= 0x1FAFF;
        if (!picture && letter != 0xFE0F && letter != 0xFE0E)
            plain += QChar::fromUcs4(letter);
    }
    return plain;
}

} // namespace

LogLine logLine(const QString& line) {
    for (const Mark& mark : lineMarks) {
        const QString begins = QString::fromUtf8(mark.begins);
        if (!line.startsWith(begins))
            continue;
        const qsizetype blank = begins.indexOf(u' '); // the words of a mark belong to the text
        const qsizetype sign = blank < 0 ? begins.size() : blank;
        return {QString::fromUtf8(mark.symbol), QString::fromUtf8(mark.state),
                withoutPictures(line.mid(sign)).trimmed()};
    }
    return {{}, {}, withoutPictures(line)};
}

LogView::LogView(rig::RigModel& rig, QObject* parent) : QAbstractListModel(parent), rig_(rig) {
    observe(this, rig.log().lineAdded(), [this](const std::string& line) { add(line); });
    for (const std::string& line : rig_.log().lines())
        rows_.push_back({QString::fromStdString(line), logLine(QString::fromStdString(line))});
}

bool LogView::passes(const QString& line) const {
    const QStringList words = filter_.split(u' ', Qt::SkipEmptyParts);
    return std::ranges::all_of(words,
                               [&](const QString& word) { return line.contains(word, Qt::CaseInsensitive); });
}

void LogView::add(const std::string& text) {
    const QString line = QString::fromStdString(text);
    if (passes(line)) {
        beginInsertRows({}, 0, 0);
        rows_.push_front({line, logLine(line)});
        endInsertRows();
        if (anchor_ >= 0)
            ++anchor_;
    }
    // What the log has let go of goes here, too; without a filter that is the line behind the last.
    const auto& lines = rig_.log().lines();
    const auto passing = std::ranges::count_if(
        lines, [this](const std::string& each) { return passes(QString::fromStdString(each)); });
    while (rowCount() > passing) {
        beginRemoveRows({}, rowCount() - 1, rowCount() - 1);
        rows_.pop_back();
        endRemoveRows();
    }
    Q_EMIT counted();
}

void LogView::setFilter(const QString& filter) {
    if (filter_ == filter)
        return;
    filter_ = filter;
    beginResetModel();
    rows_.clear();
    anchor_ = -1;
    for (const std::string& text : rig_.log().lines()) {
        const QString line = QString::fromStdString(text);
        if (passes(line))
            rows_.push_back({line, logLine(line)});
    }
    endResetModel();
    Q_EMIT filterChanged();
    Q_EMIT counted();
}

QString LogView::countText() const {
    const auto all = rig_.log().lines().size();
    if (filter_.trimmed().isEmpty())
        return all == 1 ? QStringLiteral("1 line") : QStringLiteral("%1 lines").arg(all);
    return QStringLiteral("%1 of %2 lines").arg(rowCount()).arg(all);
}

QString LogView::emptyText() const {
    if (rowCount() > 0)
        return {};
    if (rig_.log().lines().empty())
        return QStringLiteral(
            "Nothing has happened yet. Press Play to rehearse: each frame, cue and warning is "
            "told here.");
    return QStringLiteral("No line has \"%1\" in it. Clear the filter to see all.").arg(filter_.trimmed());
}

int LogView::selected() const {
    return static_cast<int>(std::ranges::count(rows_, true, &Row::selected));
}

void LogView::selectRange(int from, int to, bool only) {
    for (int row = 0; row < rowCount(); ++row) {
        const bool within = row >= from && row <= to;
        bool& selected = rows_[static_cast<std::size_t>(row)].selected;
        selected = within || (selected && !only);
    }
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), {selectedRole});
    Q_EMIT counted();
}

void LogView::select(int row) {
    anchor_ = has(row) ? row : -1;
    selectRange(row, row, true);
}

void LogView::toggle(int row) {
    if (!has(row))
        return;
    anchor_ = row;
    bool& selected = rows_[static_cast<std::size_t>(row)].selected;
    selected = !selected;
    Q_EMIT dataChanged(index(row), index(row), {selectedRole});
    Q_EMIT counted();
}

void LogView::selectTo(int row) {
    if (!has(anchor_))
        return select(row);
    selectRange(std::min(anchor_, row), std::max(anchor_, row), true);
}

void LogView::selectAll() {
    selectRange(0, rowCount() - 1, true);
}

void LogView::selectNone() {
    anchor_ = -1;
    selectRange(0, -1, true);
}

QString LogView::copyText() const {
    const bool some = selected() > 0;
    QString text;
    for (const Row& row : std::views::reverse(rows_)) {
        if (row.selected || !some)
            text += row.line + u'\n';
    }
    return text;
}

void LogView::copy() const {
    QGuiApplication::clipboard()->setText(copyText());
}

int LogView::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant LogView::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || !has(index.row()))
        return {};
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case lineRole: return withoutPictures(row.line);
    case symbolRole: return row.parts.symbol;
    case stateRole: return row.parts.state;
    case textRole: return row.parts.text;
    case selectedRole: return row.selected;
    default: return {};
    }
}

QHash<int, QByteArray> LogView::roleNames() const {
    return {{lineRole, "line"},
            {symbolRole, "symbol"},
            {stateRole, "lineState"},
            {textRole, "lineText"},
            {selectedRole, "lineSelected"}};
}

} // namespace zenka::ui
