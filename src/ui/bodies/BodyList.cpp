#include "ui/bodies/BodyList.h"

#include "rig/RigModel.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <utility>

namespace zenka::ui {

namespace {

QString faultOf(rig::RigModel& rig, const cameras::CameraControl& camera) {
    if (!camera.connected() || rig.roster().isDisconnected(camera.id()))
        return QStringLiteral("○ not connected");
    using Task = rig::BodiesInUse::Task;
    if (rig.inUse().has(camera.id(), Task::testShot))
        return QStringLiteral("a test shot is under way");
    if (rig.inUse().has(camera.id(), Task::reading))
        return QStringLiteral("is being read");
    if (rig.inUse().has(camera.id(), Task::measuring))
        return QStringLiteral("is being measured");
    return {};
}

QString driverOf(const cameras::CameraControl& camera) {
    if (!camera.isReal())
        return QStringLiteral("simulated");
    const std::string port = camera.port();
    return qt(port.empty() ? camera.backend() : camera.backend() + ' ' + port);
}

} // namespace

BodyList::BodyList(rig::RigModel& rig, QObject* parent) : RowList(parent), rig_(rig) {
    observe(this, rig.roster().changed(), [this] { refresh(); });
    observe(this, rig.testShots().changed(), [this] { refresh(); });
    observe(this, rig.cameraProfiler().cameraProfileRunning().changed(), [this](bool) { refresh(); });
    observe(this, rig.gapProfiler().gapProfileRunning().changed(), [this](bool) { refresh(); });
    refresh();
}

void BodyList::refresh() {
    std::vector<BodyRow> rows;
    for (const auto& camera : rig_.roster().cameras())
        rows.push_back({.id = qt(camera->id()),
                        .label = qt(rig_.roster().labelFor(*camera)),
                        .model = qt(rig::CameraRoster::bareModel(camera->model())),
                        .driver = driverOf(*camera),
                        .fault = faultOf(rig_, *camera)});
    setRows(std::move(rows));
}

QVariant BodyList::valueOf(const BodyRow& row, int role) const {
    switch (role) {
    case idRole: return row.id;
    case Qt::DisplayRole:
    case labelRole: return row.label;
    case modelRole: return row.model;
    case driverRole: return row.driver;
    case faultRole: return row.fault;
    default: return {};
    }
}

QHash<int, QByteArray> BodyList::roleNames() const {
    return {{idRole, "bodyId"},
            {labelRole, "label"},
            {modelRole, "bodyModel"},
            {driverRole, "driver"},
            {faultRole, "fault"}};
}

} // namespace zenka::ui
