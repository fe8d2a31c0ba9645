#include "ui/kit/DiagnosticsList.h"

#include <algorithm>
#include <string>
#include <unordered_map>

namespace zenka::ui {

LineMap::LineMap(std::string_view text) {
    int line = 1;
    for (std::size_t i = text.find_first_of("\n\r\v\f\xC2\xE2"); i != text.npos;
         i = text.find_first_of("\n\r\v\f\xC2\xE2", i + 1)) {
        const std::string_view rest = text.substr(i);
        const bool row = rest.front() == '\n' || rest.starts_with("\u2029") ||
                         (rest.front() == '\r' && !rest.starts_with("\r\n"));
        const bool within = rest.front() == '\v' || rest.front() == '\f' || rest.starts_with("\r\n") ||
                            rest.starts_with("\u0085") || rest.starts_with("\u2028");
        if (within)
            extraEnds_.push_back(line);
        line += row || within ? 1 : 0;
    }
}

int LineMap::rowOf(int lineNo) const {
    const auto before = std::ranges::lower_bound(extraEnds_, lineNo) - extraEnds_.begin();
    return std::max(lineNo - 1 - static_cast<int>(before), 0);
}

void DiagnosticsList::take(const std::vector<script::ScriptDiag>& diagnostics, const LineMap& lines) {
    beginResetModel();
    rows_.clear();
    std::unordered_map<std::string, std::size_t> known; // by line and words
    for (const script::ScriptDiag& diag : diagnostics) {
        const auto [place, isNew] =
            known.try_emplace(std::to_string(diag.lineNo) + diag.severity + diag.message, rows_.size());
        if (isNew)
            rows_.push_back({.row = diag.lineNo < 1 ? wholeScript : lines.rowOf(diag.lineNo),
                             .error = diag.severity == "error",
                             .message = QString::fromStdString(diag.message)});
        else
            ++rows_[place->second].times;
    }
    std::ranges::stable_sort(rows_, {}, &Row::row);
    errors_ = static_cast<int>(std::ranges::count(rows_, true, &Row::error));
    endResetModel();
    Q_EMIT changed();
}

int DiagnosticsList::severityOf(int row) const {
    int severity = 0;
    for (const Row& each : std::ranges::equal_range(rows_, row, {}, &Row::row))
        severity = std::max(severity, each.error ? 2 : 1);
    return severity;
}

QString DiagnosticsList::messageOf(int row) const {
    QStringList sentences;
    for (const Row& each : std::ranges::equal_range(rows_, row, {}, &Row::row))
        sentences.append((each.error ? QStringLiteral("✖ ") : QStringLiteral("⚠ ")) + each.message);
    return sentences.join(u'\n');
}

int DiagnosticsList::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant DiagnosticsList::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count())
        return {};
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case rowRole: return row.row;
    case lineRole: return row.row + 1;
    case symbolRole: return row.error ? QStringLiteral("✖") : QStringLiteral("⚠");
    case wordRole: return row.error ? QStringLiteral("error") : QStringLiteral("warning");
    case Qt::DisplayRole:
    case messageRole:
        return row.times > 1 ? QStringLiteral("%1 (%2 times)").arg(row.message).arg(row.times) : row.message;
    case errorRole: return row.error;
    default: return {};
    }
}

QHash<int, QByteArray> DiagnosticsList::roleNames() const {
    return {{rowRole, "row"},   {lineRole, "line"},       {symbolRole, "symbol"},
            {wordRole, "word"}, {messageRole, "message"}, {errorRole, "isError"}};
}

} // namespace zenka::ui
