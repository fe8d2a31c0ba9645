#include "ui/site/EclipseList.h"

#include "eclipse/Catalog.h"
#include "rig/RigModel.h"
#include "ui/kit/Observe.h"

#include <algorithm>

namespace zenka::ui {

EclipseList::EclipseList(rig::RigModel& rig, QObject* parent) : QAbstractListModel(parent), rig_(rig) {
    for (const eclipse::EclipseRecord& row : eclipse::Catalog::all())
        rows_.push_back(&row);
    std::ranges::sort(rows_, {}, [](const eclipse::EclipseRecord* row) { return row->dateUTC; });
    observe(this, rig.site().publishedEclipseId().changed(),
            [this](const auto&) { Q_EMIT currentChanged(); });
}

int EclipseList::current() const {
    const auto found = std::ranges::find(rows_, rig_.site().eclipseId(),
                                         [](const eclipse::EclipseRecord* row) { return row->id; });
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

void EclipseList::choose(int row) {
    if (row >= 0 && row < rowCount())
        rig_.site().selectEclipse(rows_[static_cast<std::size_t>(row)]->id);
}

int EclipseList::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant EclipseList::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const eclipse::EclipseRecord& row = *rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case idRole: return QString::fromStdString(row.id);
    case typeRole: return QString::fromStdString(row.type);
    case notesRole: return QString::fromStdString(row.notes);
    case Qt::DisplayRole:
    case labelRole: {
        // Shapes, so that the types are told apart without colour.
        const char* mark = row.type == "Total" ? "●" : row.type == "Annular" ? "◎" : "◐";
        return QString::fromUtf8(mark) + QLatin1Char(' ') + QString::fromStdString(row.shortName);
    }
    default: return {};
    }
}

QHash<int, QByteArray> EclipseList::roleNames() const {
    return {{idRole, "eclipseId"}, {labelRole, "label"}, {typeRole, "type"}, {notesRole, "notes"}};
}

} // namespace zenka::ui
