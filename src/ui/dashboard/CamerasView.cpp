#include "ui/dashboard/CamerasView.h"

#include "base/Text.h"
#include "cameras/CameraCatalog.h"
#include "ui/kit/LogView.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <QVariantMap>

#include <algorithm>
#include <array>
#include <utility>

namespace zenka::ui {

namespace {

constexpr char genericModel[] = "Simulated body";

/// The beginnings of the log's lines about a frame, behind which the body's label stands.
struct FrameLine {
    std::string_view begins;
    const char* word; ///< for the card
};
constexpr std::array<FrameLine, 4> aboutAFrame{{{"● ", ""},
                                                {"⚠️ DROPPED  ", "dropped: "},
                                                {"⏭ SKIPPED (not fired): ", "skipped: "},
                                                {"⚠️ TEST FAILED  ", "test failed: "}}};

constexpr int longestLens = 28; ///< letters of it on a card

template <typename Counts>
int countOf(const Counts& counts, const std::string& key) {
    const auto found = counts.find(key);
    return found == counts.end() ? 0 : found->second;
}

QString driverWord(const cameras::CameraControl& camera) {
    if (!camera.isReal())
        return QStringLiteral("simulated");
    const std::string port = camera.port();
    return qt(camera.backend()) + (port.empty() ? QString() : u' ' + qt(port));
}

QString shortened(const QString& text, int letters) {
    return text.size() <= letters ? text : text.left(letters - 1).trimmed() + u'…';
}

} // namespace

CamerasView::CamerasView(rig::RigModel& rig, QObject* parent) : QAbstractListModel(parent), rig_(rig) {
    const auto refreshed = [this] { refresh(); };
    observe(this, rig.roster().changed(), refreshed);
    observe(this, rig.script().compiled(), refreshed);
    observe(this, rig.outcomes().changed(), refreshed);
    observe(this, rig.transport().activityChanged(), refreshed);
    observe(this, rig.modes().changed(), refreshed);
    observe(this, rig.library().changed(), refreshed);
    observe(this, rig.testShots().changed(), refreshed);
    observe(this, rig.gapProfiler().gapProfileRunning().changed(), [this](bool) { refresh(); });
    observe(this, rig.detector().detecting().changed(), [this](bool) { Q_EMIT changed(); });
    observe(this, rig.detector().step().changed(), [this](const auto&) { Q_EMIT changed(); });
    observe(this, rig.reconnect().showDisconnectAlarm().changed(), [this](bool) { Q_EMIT alarmChanged(); });
    observe(this, rig.reconnect().disconnectedNames().changed(),
            [this](const auto&) { Q_EMIT alarmChanged(); });
    observe(this, rig.reconnect().cameraRecoveryHint().changed(),
            [this](const auto&) { Q_EMIT alarmChanged(); });
    observe(this, rig.renderPace().renderTick().changed(), [this](auto) { refresh(); });
    observe(this, rig.log().lineAdded(), [this](const std::string& line) { noteLine(line); });
    const auto& lines = rig.log().lines();
    std::for_each(lines.rbegin(), lines.rend(), [this](const std::string& line) { noteLine(line); });
    refresh();
}

void CamerasView::noteLine(const std::string& line) {
    for (const auto& [begins, word] : aboutAFrame) {
        if (!line.starts_with(begins))
            continue;
        const std::string_view rest = std::string_view(line).substr(begins.size());
        const auto end = rest.find("  ");
        if (end == rest.npos)
            return;
        lastLines_[std::string(rest.substr(0, end))] =
            QString::fromLatin1(word) + logLine(qt(rest.substr(end + 2))).text;
        return refresh();
    }
}

std::vector<std::string> CamerasView::missingTokens() const {
    std::vector<std::string> missing;
    for (const std::string& token : rig_.script().visibleCameras()) {
        if (rig_.roster().camerasFor(token).empty())
            missing.push_back(token);
    }
    return missing;
}

CamerasView::Row CamerasView::bodyRow(const rig::CameraRoster::Camera& camera) const {
    const rig::CameraRoster& roster = rig_.roster();
    const std::string label = roster.labelFor(*camera);
    const std::string& id = camera->id();
    Row row{.id = id, .label = qt(label), .model = qt(rig::CameraRoster::bareModel(camera->model()))};
    const bool gone = roster.isDisconnected(id) || !camera->connected();
    const auto& tokens = rig_.script().visibleCameras();
    row.used = std::ranges::any_of(
        tokens, [&](const std::string& token) { return roster.cameraMatches(*camera, token); });
    row.run = rig_.transport().runActive();
    row.real = camera->isReal();
    if (row.real) {
        row.lensFault = qt(rig_.library().lensFault(camera->serial()));
        const auto known = rig_.library().find(camera->serial());
        if (known && row.lensFault.isEmpty())
            row.lens = qt(known->lens.value_or(std::string()));
    }
    const rig::BodyModes::Mode mode = rig_.modes().of(id);
    if (!mode.modeName.empty())
        row.details += qt(mode.modeName) + QStringLiteral(" · ");
    if (mode.batteryPercent)
        row.details += QStringLiteral("%1 % · ").arg(*mode.batteryPercent);
    row.details +=
        driverWord(*camera) + QStringLiteral(" · ") +
        (gone ? QStringLiteral("not connected") : QStringLiteral("connected")) +
        (row.lens.isEmpty() ? QString() : QStringLiteral(" · ") + shortened(row.lens, longestLens)) +
        (row.used ? QString() : QStringLiteral(" · not in the script"));

    const int fired = countOf(rig_.outcomes().shotCounts(), id);
    const int dropped = countOf(rig_.outcomes().drops(), id);
    row.counts = QStringLiteral("● %1").arg(fired);
    if (dropped > 0)
        row.dropped = QStringLiteral("▲ %1 dropped").arg(dropped);
    row.symbol = gone ? QStringLiteral("○") : dropped > 0 ? QStringLiteral("▲") : QStringLiteral("●");
    row.state = gone          ? QStringLiteral("gone")
                : dropped > 0 ? QStringLiteral("drops")
                              : QStringLiteral("ready");

    const auto last = rig_.outcomes().lastFire().find(id);
    const std::string lastFire = last == rig_.outcomes().lastFire().end() ? "" : last->second;
    const bool testing = rig_.testShots().firing(id);
    if (rig_.inUse().has(id, rig::BodiesInUse::Task::measuring))
        row.lastFrame = QStringLiteral("its timing is being measured");
    else if (testing)
        row.lastFrame = QStringLiteral("test: ") + qt(lastFire);
    else if (const auto line = lastLines_.find(label); line != lastLines_.end())
        row.lastFrame = line->second;
    if (gone)
        row.warning = rig_.reconnect().downCams().contains(id)
                          ? QStringLiteral("Lost. Check cable and power; it comes back by itself.")
                          : QStringLiteral("Does not answer. Check cable and power, then detect again.");
    else if (camera->driveModeBurst() && !camera->singleShotImmuneToDrive())
        row.warning =
            QStringLiteral("The drive dial is on continuous: one press takes a burst. Set it to single.");
    else if (const std::string dials = rig_.modes().warningOf(id); !dials.empty())
        row.warning = qt(dials);
    else if (!testing && lastFire.starts_with("Test: "))
        row.warning = qt(lastFire);
    else if (!testing && dropped > 0 && !lastFire.empty() && !lastFire.starts_with("✓"))
        row.warning = QStringLiteral("Dropped: ") + qt(lastFire);
    return row;
}

CamerasView::Row CamerasView::missingRow(const std::string& token) const {
    const auto& byToken = rig_.script().capturesByToken();
    const auto frames = byToken.find(token);
    const auto count = frames == byToken.end() ? 0 : frames->second.size();
    Row row{.id = token, .missing = true, .label = qt(token)};
    row.details = QStringLiteral("missing · %1 %2 in the script")
                      .arg(count)
                      .arg(count == 1 ? QStringLiteral("frame") : QStringLiteral("frames"));
    row.symbol = QStringLiteral("□");
    row.state = QStringLiteral("missing");
    if (const int told = countOf(rig_.outcomes().shotCounts(), token); told > 0)
        row.counts = QStringLiteral("□ %1 without a body").arg(told);
    if (const auto line = lastLines_.find(token); line != lastLines_.end())
        row.lastFrame = line->second;
    row.warning = QStringLiteral("No body answers to this name. Add one, or give a body this label.");
    row.used = true;
    return row;
}

std::vector<CamerasView::Row> CamerasView::makeRows() const {
    std::vector<Row> rows;
    for (const auto& camera : rig_.roster().cameras())
        rows.push_back(bodyRow(camera));
    for (const std::string& token : missingTokens())
        rows.push_back(missingRow(token));
    return rows;
}

void CamerasView::refresh() {
    std::erase_if(removed_, [this](const auto& camera) { return owns(rig_.roster().labelFor(*camera), {}); });
    std::vector<Row> rows = makeRows();
    const auto same = [](const Row& left, const Row& right) {
        return left.id == right.id && left.missing == right.missing;
    };
    // Cards that stay are not made anew: a label may be being typed in one.
    for (int i = rowCount() - 1; i >= 0; --i) {
        const auto& row = rows_[static_cast<std::size_t>(i)];
        if (std::ranges::none_of(rows, [&](const Row& each) { return same(each, row); })) {
            beginRemoveRows({}, i, i);
            rows_.erase(rows_.begin() + i);
            endRemoveRows();
        }
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const int at = static_cast<int>(i);
        if (i >= rows_.size() || !same(rows_[i], rows[i])) {
            const auto old = std::ranges::find_if(rows_.begin() + std::min(at, rowCount()), rows_.end(),
                                                  [&](const Row& each) { return same(each, rows[i]); });
            if (old != rows_.end()) { // bodies have changed places
                beginResetModel();
                rows_ = std::move(rows);
                endResetModel();
                return Q_EMIT changed();
            }
            beginInsertRows({}, at, at);
            rows_.insert(rows_.begin() + at, rows[i]);
            endInsertRows();
        } else if (rows_[i] != rows[i]) {
            rows_[i] = rows[i];
            Q_EMIT dataChanged(index(at), index(at));
        }
    }
    Q_EMIT changed();
}

bool CamerasView::detecting() const {
    return rig_.detector().detecting().get();
}

QString CamerasView::detectStep() const {
    return qt(rig_.detector().step().get());
}

void CamerasView::cancelDetect() {
    rig_.detector().cancelDetect();
}

QString CamerasView::alarmText() const {
    const auto& names = rig_.reconnect().disconnectedNames().get();
    if (names.empty() || !rig_.reconnect().showDisconnectAlarm().get())
        return {};
    QStringList list;
    for (const std::string& name : names)
        list.append(qt(name));
    return list.join(QStringLiteral(", ")) + QStringLiteral(" DISCONNECTED");
}

QString CamerasView::alarmHint() const {
    const auto& hint = rig_.reconnect().cameraRecoveryHint().get();
    return hint ? qt(*hint)
                : QStringLiteral(
                      "Check cable and power. It is looked for every 2 s and goes on by itself; the "
                      "others keep firing.");
}

void CamerasView::acknowledgeAlarm() {
    rig_.reconnect().acknowledgeAlarm();
}

QVariantList CamerasView::catalogue() const {
    QVariantList brands;
    for (const auto& brand : cameras::CameraCatalog::byBrand()) {
        QStringList models;
        for (const std::string_view model : brand.models)
            models.append(qt(model));
        brands.append(
            QVariantMap{{QStringLiteral("brand"), qt(brand.name)}, {QStringLiteral("models"), models}});
    }
    return brands;
}

QString CamerasView::summary() const {
    const auto bodies = rig_.roster().cameras().size();
    const auto missing = std::ranges::count(rows_, true, &Row::missing);
    QString text = bodies == 0   ? QStringLiteral("No bodies")
                   : bodies == 1 ? QStringLiteral("1 body")
                                 : QStringLiteral("%1 bodies").arg(bodies);
    if (missing > 0)
        text += QStringLiteral(", %1 missing").arg(missing);
    return text;
}

QString CamerasView::emptyText() const {
    if (!rows_.empty())
        return {};
    return QStringLiteral(
        "No camera yet. Connect one and detect it, or add a simulated body to rehearse with.");
}

QString CamerasView::offer() const {
    const auto missing = missingTokens();
    if (missing.empty())
        return {};
    if (rig_.roster().cameras().empty())
        return missing.size() == 1 ? QStringLiteral("Add a simulated body for the camera of the script")
                                   : QStringLiteral("Add a simulated body for each camera of the script");
    return QStringLiteral("Add a simulated body for ") +
           (missing.size() == 1 ? qt(missing.front()) : QStringLiteral("each missing camera"));
}

QString CamerasView::nextToken() const {
    const auto missing = missingTokens();
    return missing.empty() ? QString() : qt(missing.front());
}

void CamerasView::add(const QString& model) {
    const auto missing = missingTokens();
    const auto camera = rig_.roster().addPlanningCamera(model.toStdString());
    if (!missing.empty())
        rig_.roster().setLabel(*camera, missing.front());
}

void CamerasView::addForScript() {
    // All that are missing now: a body named CAM1 would answer to CAM10 as well until that has its own.
    for (const std::string& token : missingTokens()) {
        if (!owns(token, {}))
            rig_.roster().setLabel(*rig_.roster().addPlanningCamera(genericModel), token);
    }
}

bool CamerasView::owns(const std::string& label, const QString& otherThan) const {
    return std::ranges::any_of(rig_.roster().cameras(), [&](const auto& camera) {
        return qt(camera->id()) != otherThan &&
               base::equalIgnoringCase(rig_.roster().labelFor(*camera), label);
    });
}

QString CamerasView::labelFault(const QString& id, const QString& label) const {
    const std::string wanted = label.trimmed().toStdString();
    if (wanted.empty())
        return QStringLiteral("A body needs a label. Write the name that the script has for it.");
    if (owns(wanted, id))
        return QStringLiteral("Another body has the label \"%1\": both would fire. Write another name.")
            .arg(label.trimmed());
    return {};
}

bool CamerasView::setLabel(const QString& id, const QString& label) {
    const auto camera = find(id);
    if (!camera || !labelFault(id, label).isEmpty())
        return false;
    rig_.roster().setLabel(*camera, label.trimmed().toStdString());
    return true;
}

void CamerasView::setLens(const QString& id, const QString& lens) {
    if (const auto camera = find(id))
        rig_.library().setLens(camera->serial(), lens.toStdString());
}

void CamerasView::remove(const QString& id) {
    const auto camera = find(id);
    if (!camera)
        return;
    if (!camera->isReal())
        removed_.push_back(camera);
    rig_.roster().removeCamera(camera->id());
    Q_EMIT removed();
}

QString CamerasView::undoText() const {
    if (removed_.empty())
        return {};
    return qt(rig_.roster().labelFor(*removed_.back())) + QStringLiteral(" removed.");
}

void CamerasView::undoRemove() {
    if (removed_.empty())
        return;
    const auto camera = removed_.back();
    removed_.pop_back();
    rig_.roster().bringBack(camera);
}

rig::CameraRoster::Camera CamerasView::find(const QString& id) const {
    const auto& cameras = rig_.roster().cameras();
    const auto found =
        std::ranges::find_if(cameras, [&](const auto& camera) { return qt(camera->id()) == id; });
    return found == cameras.end() ? nullptr : *found;
}

int CamerasView::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant CamerasView::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case idRole: return qt(row.id);
    case missingRole: return row.missing;
    case Qt::DisplayRole:
    case labelRole: return row.label;
    case modelRole: return row.model;
    case detailsRole: return row.details;
    case symbolRole: return row.symbol;
    case stateRole: return row.state;
    case lastFrameRole: return row.lastFrame.isEmpty() ? QStringLiteral("no frame yet") : row.lastFrame;
    case countsRole: return row.counts;
    case droppedRole: return row.dropped;
    case warningRole: return row.warning;
    case usedRole: return row.used;
    case statusLineRole:
        return row.symbol + u' ' + row.label + QStringLiteral("  ") +
               (row.missing               ? row.details
                : row.lastFrame.isEmpty() ? row.details
                                          : row.lastFrame) +
               (row.dropped.isEmpty() ? QString() : QStringLiteral("  ") + row.dropped);
    case runRole: return row.run;
    case realRole: return row.real;
    case lensRole: return row.lens;
    case lensFaultRole: return row.lensFault;
    default: return {};
    }
}

QHash<int, QByteArray> CamerasView::roleNames() const {
    return {{idRole, "cameraId"},           {missingRole, "missing"},
            {labelRole, "label"},           {modelRole, "bodyModel"},
            {detailsRole, "details"},       {symbolRole, "symbol"},
            {stateRole, "bodyState"},       {lastFrameRole, "lastFrame"},
            {countsRole, "counts"},         {droppedRole, "dropped"},
            {warningRole, "warning"},       {usedRole, "used"},
            {statusLineRole, "statusLine"}, {runRole, "runActive"},
            {realRole, "bodyReal"},         {lensRole, "lens"},
            {lensFaultRole, "lensFault"}};
}

} // namespace zenka::ui
