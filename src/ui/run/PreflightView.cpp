#include "ui/run/PreflightView.h"

#include "rig/RigModel.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <QStringList>

#include <algorithm>
#include <utility>

namespace zenka::ui {

using rig::PreflightStatus;

namespace {

constexpr QLatin1String preflightSheet("Preflight");

/// How a status is told: by shape, by word, and to the sheet.
struct Look {
    QString symbol;
    QString word;
    QString name;
};

Look lookOf(PreflightStatus status) {
    switch (status) {
    case PreflightStatus::ok: return {QStringLiteral("✓"), QStringLiteral("OK"), QStringLiteral("ok")};
    case PreflightStatus::warn: return {QStringLiteral("▲"), QStringLiteral("LOOK"), QStringLiteral("warn")};
    case PreflightStatus::fail: return {QStringLiteral("■"), QStringLiteral("MEND"), QStringLiteral("fail")};
    }
    return {};
}

} // namespace

PreflightView::PreflightView(rig::RigModel& rig, AppView& app, QObject* parent)
    : RowList(parent), rig_(rig), app_(app) {
    observe(this, rig.preflight().showPreflight().changed(), [this](bool) { later([this] { follow(); }); });
    observe(this, rig.preflight().locationWanted(),
            [this] { later([this] { app_.openSheet(QStringLiteral("Location")); }); });
    connect(&app, &AppView::sheetClosing, this, [this](const QString& name) {
        // A page to read lies over it for a while only.
        if (name == preflightSheet && !app_.holdsBelow(preflightSheet))
            rig_.preflight().cancelPreflight();
    });
    const auto look = [this](const auto&...) { soon(); };
    observe(this, rig.preflight().rechecked(), [this] { soon(); });
    observe(this, rig.modes().changed(), [this] { soon(); });
    observe(this, rig.roster().changed(), [this] { soon(); });
    observe(this, rig.health().sampled(), [this] { soon(); });
    observe(this, rig.time().changed(), [this] { soon(); });
    observe(this, rig.script().compiled(), [this] { soon(); });
    observe(this, rig.site().recomputed(), [this] { soon(); });
    observe(this, rig.audio().systemMuted().changed(), look);
    observe(this, rig.reconnect().disconnectedNames().changed(), look);
}

/// Not in the middle of a tick: a sheet takes its time to be made.
void PreflightView::later(const std::function<void()>& what) {
    QMetaObject::invokeMethod(this, what, Qt::QueuedConnection);
}

void PreflightView::follow() {
    refresh();
    if (rig_.preflight().showPreflight().get())
        app_.openSheet(preflightSheet);
    else if (app_.holds(preflightSheet))
        app_.closeSheet();
}

void PreflightView::openArming() {
    later([this] { app_.openSheet(QStringLiteral("Arm")); });
}

/// Many things change at a time.
void PreflightView::soon() {
    if (!rig_.preflight().showPreflight().get() || std::exchange(waiting_, true))
        return;
    later([this] {
        waiting_ = false;
        refresh();
    });
}

void PreflightView::refresh() {
    if (rig_.preflight().showPreflight().get())
        setRows(rig_.preflight().checks());
    Q_EMIT changed();
}

qsizetype PreflightView::countOf(PreflightStatus status) const {
    return std::ranges::count(rows(), status, &rig::PreflightCheck::status);
}

QString PreflightView::summary() const {
    QStringList parts;
    const auto add = [&](PreflightStatus status, const char* words) {
        if (const qsizetype count = countOf(status))
            parts.append(QStringLiteral("%1 %2 %3")
                             .arg(lookOf(status).symbol, QString::number(count), QLatin1String(words)));
    };
    add(PreflightStatus::fail, "to mend");
    add(PreflightStatus::warn, "to look at");
    add(PreflightStatus::ok, "fine");
    return parts.join(QStringLiteral("  ·  "));
}

QString PreflightView::place() const {
    const std::string& place = rig_.preflight().sitePlace().get();
    return place.empty() ? QString() : QStringLiteral("By the map you stand at %1.").arg(qt(place));
}

bool PreflightView::fails() const {
    return countOf(PreflightStatus::fail) > 0;
}

bool PreflightView::mayProceed() const {
    return rig_.preflight().mayProceed();
}

void PreflightView::recheck() {
    rig_.preflight().recheck();
}

void PreflightView::proceed() {
    rig_.preflight().proceedPreflight();
}

QVariant PreflightView::valueOf(const rig::PreflightCheck& row, int role) const {
    switch (role) {
    case titleRole: return qt(row.title);
    case detailRole: return qt(row.detail);
    case symbolRole: return lookOf(row.status).symbol;
    case wordRole: return lookOf(row.status).word;
    case statusRole: return lookOf(row.status).name;
    default: return {};
    }
}

QHash<int, QByteArray> PreflightView::roleNames() const {
    return {{titleRole, "title"},
            {detailRole, "detail"},
            {symbolRole, "symbol"},
            {wordRole, "word"},
            {statusRole, "status"}};
}

} // namespace zenka::ui
