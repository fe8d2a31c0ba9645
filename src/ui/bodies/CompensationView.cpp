#include "ui/bodies/CompensationView.h"

#include "rig/RigModel.h"
#include "rig/fire/FireWording.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <algorithm>
#include <string>

namespace zenka::ui {

namespace {

QString originOf(const exposure::CompGaps& gaps) {
    if (gaps.source == "script")
        return QStringLiteral("from the script's CAMSET line");
    if (gaps.source == "profile")
        return QStringLiteral("from this body's profile (no CAMSET line in the script)");
    return QStringLiteral("defaults (no CAMSET line, body not profiled)");
}

} // namespace

CompensationView::CompensationView(rig::RigModel& rig, QObject* parent)
    : QAbstractListModel(parent), rig_(rig) {
    const auto refreshed = [this] { refresh(); };
    observe(this, rig.exposure().compOffsets().changed(), [this](const auto&) { refresh(); });
    observe(this, rig.exposure().leaveTotalityAlone().changed(), [this](bool) { refresh(); });
    observe(this, rig.exposure().rules().changed(), [this](const auto&) { refresh(); });
    observe(this, rig.roster().changed(), refreshed);
    observe(this, rig.script().compiled(), refreshed);
    observe(this, rig.renderPace().renderTick().changed(), [this](auto) { refresh(); });
    refresh();
}

CompensationView::Row CompensationView::rowOf(const std::string& token) const {
    const rig::ExposureControl& control = rig_.exposure();
    const exposure::CompOffsets offsets = control.offsetsOf(token);
    Row row{.token = qt(token),
            .partials = qt(exposure::ExposureComp::signedStops(offsets.partials)),
            .totality = qt(exposure::ExposureComp::signedStops(offsets.inTotality())),
            .gaps = originOf(control.compGaps(token)),
            .next = {},
            .note = {},
            .on = offsets.enabled,
            .linked = offsets.linked,
            .hasRules = control.rules().hasSavedCompRules(token)};
    const script::Capture* next = rig_.script().nextCapture(token, rig_.transport().clock());
    if (!next) {
        row.next = QStringLiteral("no frame to come");
        return row;
    }
    const rig::CompensatedCapture as = control.compensated(*next);
    const std::string before = rig::settingsText(rig::shotOf(*next));
    const std::string after = rig::settingsText(rig::shotOf(as.capture));
    row.next = QStringLiteral("next: ") + qt(next->refLabel) + QStringLiteral("  ") + qt(before) +
               (after == before ? QString() : QStringLiteral("  →  ") + qt(after));
    row.note = qt(as.note);
    return row;
}

void CompensationView::refresh() {
    std::vector<Row> rows;
    for (const std::string& token : rig_.exposure().timelineTokens())
        rows.push_back(rowOf(token));
    const bool sameTokens = std::ranges::equal(rows, rows_, {}, &Row::token, &Row::token);
    if (!sameTokens) {
        beginResetModel();
        rows_ = std::move(rows);
        endResetModel();
    } else {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (rows_[i] == rows[i])
                continue;
            rows_[i] = rows[i];
            Q_EMIT dataChanged(index(static_cast<int>(i)), index(static_cast<int>(i)));
        }
    }
    Q_EMIT changed();
}

QString CompensationView::summary() const {
    return QStringLiteral("EV ") + qt(rig_.exposure().compSummary());
}

QString CompensationView::emptyText() const {
    return rows_.empty() ? QStringLiteral("No camera yet. Write a script or add a body first.") : QString();
}

bool CompensationView::active() const {
    return rig_.exposure().compActive();
}

bool CompensationView::leaveTotalityAlone() const {
    return rig_.exposure().leaveTotalityAlone().get();
}

void CompensationView::setLeaveTotalityAlone(bool alone) {
    rig_.exposure().setLeaveTotalityAlone(alone);
}

bool CompensationView::setOn(const QString& token, bool on) {
    if (on && !rig_.exposure().rules().hasSavedCompRules(token.toStdString()))
        return false;
    exposure::CompOffsets offsets = rig_.exposure().offsetsOf(token.toStdString());
    offsets.enabled = on;
    rig_.exposure().setOffsets(token.toStdString(), offsets);
    return true;
}

void CompensationView::nudgePartials(const QString& token, int by) {
    rig_.exposure().nudge(token.toStdString(), by, 0);
}

void CompensationView::nudgeTotality(const QString& token, int by) {
    rig_.exposure().nudge(token.toStdString(), 0, by);
}

void CompensationView::setLinked(const QString& token, bool linked) {
    exposure::CompOffsets offsets = rig_.exposure().offsetsOf(token.toStdString());
    offsets.linked = linked;
    rig_.exposure().setOffsets(token.toStdString(), offsets);
}

void CompensationView::nudgeAll(int by) {
    rig_.exposure().nudgeAllComp(by);
}

void CompensationView::reset() {
    rig_.exposure().resetExposureComp(true);
}

int CompensationView::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant CompensationView::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case tokenRole: return row.token;
    case onRole: return row.on;
    case partialsRole: return row.partials;
    case totalityRole: return row.totality;
    case linkedRole: return row.linked;
    case hasRulesRole: return row.hasRules;
    case gapsRole: return row.gaps;
    case nextRole: return row.next;
    case noteRole: return row.note;
    default: return {};
    }
}

QHash<int, QByteArray> CompensationView::roleNames() const {
    return {{tokenRole, "token"},       {onRole, "on"},         {partialsRole, "partials"},
            {totalityRole, "totality"}, {linkedRole, "linked"}, {hasRulesRole, "hasRules"},
            {gapsRole, "gaps"},         {nextRole, "next"},     {noteRole, "note"}};
}

} // namespace zenka::ui
