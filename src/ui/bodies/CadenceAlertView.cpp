#include "ui/bodies/CadenceAlertView.h"

#include "rig/RigModel.h"
#include "ui/bodies/GapProfilerView.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <algorithm>
#include <utility>

namespace zenka::ui {

using rig::CadenceChoice;

namespace {

constexpr QLatin1String dropSheet("DropExplainer");

} // namespace

CadenceAlertView::CadenceAlertView(rig::RigModel& rig, AppView& app, GapProfilerView& gapProfiler,
                                   QObject* parent)
    : QObject(parent), rig_(rig), app_(app), gapProfiler_(gapProfiler) {
    const auto noteName = [this](const std::optional<rig::CadenceAlert>& alert) {
        if (alert)
            cameraName_ = alert->cameraName;
    };
    observe(this, rig.cadence().tooTightWarning().changed(), noteName);
    observe(this, rig.cadence().dropExplainer().changed(), [this, noteName](const auto& alert) {
        noteName(alert);
        Q_EMIT changed();
        soon();
    });
    observe(this, rig.transport().activityChanged(), [this] { soon(); });
    observe(this, rig.cadence().chosen(), [this](CadenceChoice choice) {
        if (choice == CadenceChoice::measure) {
            if (const auto camera = body())
                gapProfiler_.choose(qt(camera->id()));
            app_.openSheet(QStringLiteral("GapProfiler"));
        } else if (choice == CadenceChoice::editScript) {
            app_.openSheet(QStringLiteral("Script"));
            const auto camera = body();
            if (const auto pair = camera ? rig_.cadence().tightestPair(*camera) : std::nullopt)
                Q_EMIT app_.scriptLineWanted(pair->lineNo);
        }
    });
    connect(&app_, &AppView::sheetChanged, this, &CadenceAlertView::sheetChanged);
}

/// Not in the middle of a tick: a sheet takes its time to be made.
void CadenceAlertView::soon() {
    QMetaObject::invokeMethod(
        this, [this] { look(); }, Qt::QueuedConnection);
}

void CadenceAlertView::look() {
    if (rig_.transport().runActive()) {
        if (open_)
            app_.openSheet({}); // a run is to be seen
        return;
    }
    if (rig_.cadence().dropExplainer().get() && app_.sheet().isEmpty())
        app_.openSheet(dropSheet);
}

void CadenceAlertView::sheetChanged() {
    const bool wasOpen = std::exchange(open_, app_.holds(dropSheet));
    if (open_)
        return;
    if (wasOpen)
        rig_.cadence().resolveDropExplainer(CadenceChoice::close);
    soon();
}

std::shared_ptr<cameras::CameraControl> CadenceAlertView::body() const {
    const auto& cameras = rig_.roster().cameras();
    const auto found = std::ranges::find(cameras, cameraName_,
                                         [this](const auto& each) { return rig_.roster().labelFor(*each); });
    return found == cameras.end() ? nullptr : *found;
}

QString CadenceAlertView::headline() const {
    const auto& alert = rig_.cadence().dropExplainer().get();
    if (!alert)
        return QStringLiteral("The last run left no drops to explain.");
    return QStringLiteral("▲ %1 dropped %2 of %3 frames.")
        .arg(qt(alert->cameraName))
        .arg(alert->dropped)
        .arg(alert->frames);
}

QString CadenceAlertView::reason() const {
    const auto& alert = rig_.cadence().dropExplainer().get();
    if (!alert)
        return {};
    return QStringLiteral(
               "The script asked it for frames as close as %1, and it needs %2 from one to the next. "
               "About %3 % of frames so close drop.")
        .arg(qt(rig::fmtSecs(alert->scriptGapSec)), qt(rig::fmtSecs(alert->bodyFloorSec)))
        .arg(alert->pct);
}

QString CadenceAlertView::basis() const {
    const auto& alert = rig_.cadence().dropExplainer().get();
    if (!alert)
        return {};
    const auto camera = body();
    const bool measured = camera ? rig_.cadence().measured(*camera) : !alert->estimated;
    return measured
               ? QStringLiteral("That was measured. Give its frames more room in the script, or measure it "
                                "anew if cable, card or settings have changed.")
               : QStringLiteral("That is what bodies on such a link usually need: this one was never "
                                "measured. Measure it to know, or give its frames more room in the script.");
}

QString CadenceAlertView::asymmetry() const {
    const auto& summary = rig_.logbook().pendingSurvey().get();
    if (!rig_.cadence().dropExplainer().get() || !summary)
        return {};
    return qt(summary->asymmetry.value_or(std::string()));
}

void CadenceAlertView::editScript() {
    rig_.cadence().resolveDropExplainer(CadenceChoice::editScript);
}

void CadenceAlertView::measure() {
    rig_.cadence().resolveDropExplainer(CadenceChoice::measure);
}

} // namespace zenka::ui
