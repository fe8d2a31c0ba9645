#include "ui/run/ArmView.h"

#include "rig/RigModel.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Observe.h"

namespace zenka::ui {

namespace {

QString words(const rig::CadenceAlert& alert) {
    const auto span = [](double seconds) { return QString::fromStdString(rig::fmtSecs(seconds)); };
    return QStringLiteral("%1: the script has frames %2 apart, and this body %3 %4. About %5 % of such "
                          "frames may drop. Widen the spacing in the script, or use a faster body.")
        .arg(QString::fromStdString(alert.cameraName), span(alert.scriptGapSec),
             alert.estimated ? QStringLiteral("is expected to need") : QStringLiteral("was measured to need"),
             span(alert.bodyFloorSec), QString::number(alert.pct));
}

} // namespace

ArmView::ArmView(rig::RigModel& rig, AppView& app, QObject* parent) : QObject(parent), rig_(rig), app_(app) {
    observe(this, rig.cadence().tooTightWarning().changed(), [this](const auto&) { Q_EMIT changed(); });
    // What held it back may be mended by the time that the sheet is opened again.
    connect(&app, &AppView::sheetClosing, this, [this](const QString& name) {
        if (name == QLatin1String("Arm"))
            rig_.cadence().resolveTooTightWarning(rig::CadenceChoice::close);
    });
}

QString ArmView::estimate() const {
    const auto alert = rig_.cadence().cadenceAlertForArm();
    return alert && alert->estimated ? words(*alert) : QString();
}

QString ArmView::tooTight() const {
    const auto& alert = rig_.cadence().tooTightWarning().get();
    return alert ? words(*alert) : QString();
}

void ArmView::arm() {
    rig_.transport().armRealEclipseTiming(false);
    if (!rig_.cadence().tooTightWarning().get())
        app_.closeSheet();
}

void ArmView::armAnyway() {
    app_.closeSheet();
    rig_.transport().armRealEclipseTiming(true);
}

void ArmView::editScript() {
    rig_.cadence().resolveTooTightWarning(rig::CadenceChoice::editScript);
}

void ArmView::measure() {
    rig_.cadence().resolveTooTightWarning(rig::CadenceChoice::measure);
}

} // namespace zenka::ui
