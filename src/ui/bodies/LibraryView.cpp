#include "ui/bodies/LibraryView.h"

#include "rig/RigModel.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <algorithm>
#include <utility>

namespace zenka::ui {

LibraryView::LibraryView(rig::RigModel& rig, QObject* parent) : QAbstractListModel(parent), rig_(rig) {
    observe(this, rig.library().changed(), [this] { refresh(); });
    observe(this, rig.roster().changed(), [this] { refresh(); });
    refresh();
}

std::vector<LibraryView::Row> LibraryView::makeRows() const {
    const rig::LibraryDesk& library = rig_.library();
    std::vector<Row> rows;
    for (const auto& entry : library.entries())
        rows.push_back({.serial = qt(entry.serial),
                        .label = qt(entry.label),
                        .model = qt(rig::CameraRoster::bareModel(entry.model)),
                        .lens = qt(entry.lens.value_or(std::string())),
                        .lensFault = qt(library.lensFault(entry.serial)),
                        .connected = library.isHere(entry.serial)});
    return rows;
}

void LibraryView::refresh() {
    const std::vector<Row> rows = makeRows();
    // Rows that stay are not made anew: a lens may be being typed in one.
    for (int i = rowCount() - 1; i >= 0; --i) {
        const QString serial = rows_[static_cast<std::size_t>(i)].serial;
        if (std::ranges::find(rows, serial, &Row::serial) == rows.end()) {
            beginRemoveRows({}, i, i);
            rows_.erase(rows_.begin() + i);
            endRemoveRows();
        }
    }
    for (std::size_t i = 0; i < rows.size(); ++i) { // new ones come last
        const int at = static_cast<int>(i);
        if (i >= rows_.size()) {
            beginInsertRows({}, at, at);
            rows_.push_back(rows[i]);
            endInsertRows();
        } else if (rows_[i] != rows[i]) {
            rows_[i] = rows[i];
            Q_EMIT dataChanged(index(at), index(at));
        }
    }
    Q_EMIT changed();
}

QString LibraryView::summary() const {
    if (rows_.empty())
        return {};
    const auto absent = std::ranges::count(rows_, false, &Row::connected);
    QString text =
        rows_.size() == 1 ? QStringLiteral("1 body") : QStringLiteral("%1 bodies").arg(rows_.size());
    if (absent > 0)
        text += QStringLiteral(", %1 not connected").arg(absent);
    return text;
}

QString LibraryView::emptyText() const {
    if (!rows_.empty())
        return {};
    return QStringLiteral(
        "No body is known yet. Detect one and give it a label; it is remembered by its serial number.");
}

QString LibraryView::undoText() const {
    const auto& forgotten = rig_.library().forgotten();
    if (forgotten.empty())
        return {};
    return qt(forgotten.back().label) + QStringLiteral(" forgotten.");
}

void LibraryView::setLens(const QString& serial, const QString& lens) {
    rig_.library().setLens(serial.toStdString(), lens.toStdString());
}

void LibraryView::forget(const QString& serial) {
    rig_.library().forget(serial.toStdString());
}

void LibraryView::undoForget() {
    rig_.library().undoForget();
}

int LibraryView::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant LibraryView::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case serialRole: return row.serial;
    case Qt::DisplayRole:
    case labelRole: return row.label;
    case modelRole: return row.model;
    case lensRole: return row.lens;
    case lensFaultRole: return row.lensFault;
    case connectedRole: return row.connected;
    case stateRole: return row.connected ? QStringLiteral("● connected") : QStringLiteral("○ not connected");
    default: return {};
    }
}

QHash<int, QByteArray> LibraryView::roleNames() const {
    return {{serialRole, "serial"},  {labelRole, "label"},         {modelRole, "bodyModel"},
            {lensRole, "lens"},      {lensFaultRole, "lensFault"}, {connectedRole, "isConnected"},
            {stateRole, "bodyState"}};
}

} // namespace zenka::ui
