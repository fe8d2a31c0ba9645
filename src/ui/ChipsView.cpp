#include "ui/ChipsView.h"

#include "rig/RigModel.h"
#include "ui/Observe.h"

#include <QVariantMap>

namespace zenka::ui {

ChipsView::ChipsView(rig::RigModel& rig, QObject* parent) : QObject(parent), rig_(rig) {
    observe(this, rig.sleepGuard().heldForLive().changed(), [this](const auto&) { Q_EMIT changed(); });
}

QVariantList ChipsView::rows() const {
    QVariantList rows;
    if (rig_.sleepGuard().heldForLive().get())
        rows.append(QVariantMap{
            {QStringLiteral("symbol"), QStringLiteral("☼")},
            {QStringLiteral("text"), QStringLiteral("awake")},
            {QStringLiteral("words"),
             QStringLiteral("Keep-awake is on: neither computer nor display go to sleep in a run.")}});
    return rows;
}

} // namespace zenka::ui
