#include "ui/bodies/GapProfilerView.h"

#include "base/CivilTime.h"
#include "base/Text.h"
#include "exposure/ExposureScales.h"
#include "rig/RigModel.h"
#include "ui/kit/ExposureFields.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <QVariantMap>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace zenka::ui {

using rig::GapProfileMode;
using rig::GapSettingsMode;

namespace {

/// A shutter that makes a frame a long one, seconds.
constexpr double longFrame = 0.25;
/// Seconds; beyond them a typed cadence is a slip.
constexpr double fastestCadence = 0.05;
constexpr double slowestCadence = 120;

const std::vector<std::string_view>& longShutters() {
    static const std::vector<std::string_view> shutters = [] {
        std::vector<std::string_view> slow;
        std::ranges::copy_if(exposure::standardShutters(), std::back_inserter(slow),
                             [](const auto& text) { return exposure::shutterSeconds(text) >= longFrame; });
        return slow;
    }();
    return shutters;
}

struct Cadence {
    double seconds = 0; ///< 0: one that suits the body
    QString fault;
};

Cadence readCadence(const QString& text) {
    const std::string typed = ExposureFields::bare(text.toStdString(), "", "s");
    if (typed.empty())
        return {};
    const auto seconds = base::readNumber(typed);
    if (!seconds)
        return {.fault = QStringLiteral("This is no cadence. Type the seconds from frame to frame, as 0.5 or "
                                        "2, or nothing for the one that suits the body.")};
    if (*seconds < fastestCadence || *seconds > slowestCadence)
        return {.fault = QStringLiteral("A cadence lies between 0.05 and 120 s. Type one in that range.")};
    return {.seconds = *seconds, .fault = {}};
}

QString secondsText(double seconds) {
    return QString::number(std::round(seconds * 100) / 100) + QStringLiteral(" s");
}

QString everyText(double seconds) {
    return QStringLiteral("a frame every %1").arg(secondsText(seconds));
}

QString kindText(GapProfileMode mode, GapSettingsMode settings) {
    if (mode == GapProfileMode::sustainedBurst)
        return QStringLiteral("sustained burst");
    return settings == GapSettingsMode::same ? QStringLiteral("quick floor, same settings")
                                             : QStringLiteral("quick floor, changing settings");
}

} // namespace

GapProfilerView::GapProfilerView(rig::RigModel& rig, QObject* parent)
    : QObject(parent), rig_(rig), body_(rig.roster()), ladder_(new GapLadder(this)) {
    rig::GapProfiler& profiler = rig.gapProfiler();
    const auto told = [this](const auto&) { Q_EMIT changed(); };
    const auto followed = [this](const auto&) { follow(); };
    observe(this, profiler.gapProfileMode().changed(), told);
    observe(this, profiler.gapSettingsMode().changed(), told);
    observe(this, profiler.gapBurstShutter().changed(), told);
    observe(this, profiler.gapProfileRows().changed(), followed);
    observe(this, profiler.gapProfileRung().changed(), followed);
    observe(this, profiler.gapBurst().changed(), followed);
    observe(this, profiler.gapProfileRunning().changed(), [this](bool running) { runningChanged(running); });
    observe(this, profiler.history().changed(), [this](const auto&) { Q_EMIT historyChanged(); });
    observe(this, rig.roster().changed(), [this] {
        body_.follow();
        Q_EMIT changed();
        Q_EMIT storedChanged();
    });
    observe(this, rig.script().compiled(), [this] { Q_EMIT storedChanged(); });
}

void GapProfilerView::open() {
    body_.settle();
    refusal_.clear();
    Q_EMIT changed();
    Q_EMIT storedChanged();
    Q_EMIT historyChanged();
}

void GapProfilerView::choose(const QString& cameraId) {
    if (running())
        return;
    body_.choose(cameraId.toStdString());
    again();
}

void GapProfilerView::again() {
    showsResult_ = false;
    refusal_.clear();
    Q_EMIT changed();
    Q_EMIT storedChanged();
}

void GapProfilerView::check() {
    const QString fault = readCadence(cadence_).fault;
    if (std::exchange(cadenceFault_, fault) != fault)
        Q_EMIT changed();
}

void GapProfilerView::start() {
    refusal_.clear();
    if (burst()) {
        check();
        if (!cadenceFault_.isEmpty())
            return;
    }
    rig_.gapProfiler().setGapBurstTargetCadence(readCadence(cadence_).seconds);
    refusal_ = qt(rig_.gapProfiler().runGapProfile(body_.id()));
    Q_EMIT changed();
}

void GapProfilerView::stop() {
    if (!running())
        return;
    stopping_ = true;
    Q_EMIT changed();
    rig_.gapProfiler().stop();
}

void GapProfilerView::runningChanged(bool running) {
    stopping_ = false;
    if (running) {
        ladder_->clear();
        burstMarks_ = {};
        showsResult_ = false;
        shownBurst_ = burst();
        body_.choose(rig_.gapProfiler().gapProfileTargetID().get());
        const auto camera = body_.camera();
        shownName_ = camera ? qt(rig_.roster().labelFor(*camera)) : QString();
        shownModel_ = camera ? camera->model() : std::string();
        before_ = floorsOf(shownModel_);
    } else {
        showsResult_ = true;
    }
    follow();
    Q_EMIT storedChanged();
}

void GapProfilerView::follow() {
    const rig::GapProfiler& profiler = rig_.gapProfiler();
    if (const auto& now = profiler.gapBurst().get())
        burstMarks_.take(now->fired - now->missing, now->missing, 0);
    else if (!shownBurst_)
        ladder_->show(profiler.gapProfileRows().get(), profiler.gapProfileRung().get(), running());
    Q_EMIT changed();
}

QString GapProfilerView::page() const {
    if (running())
        return QStringLiteral("running");
    return showsResult_ ? QStringLiteral("result") : QStringLiteral("setup");
}

bool GapProfilerView::running() const {
    return rig_.gapProfiler().gapProfileRunning().get();
}

QString GapProfilerView::bodyId() const {
    return qt(body_.id());
}

QString GapProfilerView::bodyName() const {
    if (running() || showsResult_)
        return shownName_;
    const auto camera = body_.camera();
    return camera ? qt(rig_.roster().labelFor(*camera)) : QString();
}

bool GapProfilerView::burst() const {
    return rig_.gapProfiler().gapProfileMode().get() == GapProfileMode::sustainedBurst;
}

void GapProfilerView::setBurst(bool burst) {
    rig_.gapProfiler().setGapProfileMode(burst ? GapProfileMode::sustainedBurst : GapProfileMode::quickFloor);
}

bool GapProfilerView::changing() const {
    return rig_.gapProfiler().gapSettingsMode().get() == GapSettingsMode::changing;
}

void GapProfilerView::setChanging(bool changing) {
    rig_.gapProfiler().setGapSettingsMode(changing ? GapSettingsMode::changing : GapSettingsMode::same);
}

QStringList GapProfilerView::shutters() const {
    QStringList texts{QStringLiteral("none: short frames")};
    for (const std::string_view text : longShutters())
        texts.append(qt(text) + QStringLiteral(" s"));
    return texts;
}

int GapProfilerView::shutter() const {
    const double seconds = rig_.gapProfiler().gapBurstShutter().get();
    const auto found = std::ranges::find(longShutters(), seconds, exposure::shutterSeconds);
    return found == longShutters().end() ? 0 : static_cast<int>(found - longShutters().begin()) + 1;
}

void GapProfilerView::setShutter(int row) {
    const bool none = row < 1 || row > static_cast<int>(longShutters().size());
    rig_.gapProfiler().setGapBurstShutter(
        none ? 0 : exposure::shutterSeconds(longShutters()[static_cast<std::size_t>(row - 1)]));
}

void GapProfilerView::setCadence(const QString& text) {
    cadence_ = text;
    // Not while it is being typed, but a fault that has been told goes as soon as it is mended.
    if (!cadenceFault_.isEmpty())
        cadenceFault_ = readCadence(cadence_).fault;
    Q_EMIT changed();
}

/// The cadence that a burst would be fired at.
double GapProfilerView::planned() const {
    const auto camera = body_.camera();
    return rig::SustainedBurst::targetCadence(
        {.shutterSec = rig_.gapProfiler().gapBurstShutter().get(),
         .targetSec = readCadence(cadence_).seconds,
         .measuredFloorSec = camera ? rig_.floors().measuredFloor(camera->model()) : std::nullopt});
}

QString GapProfilerView::plan() const {
    const auto camera = body_.camera();
    if (!camera)
        return QStringLiteral("There is no body to measure. Connect one and detect it in the Cameras panel.");
    const QString name = qt(rig_.roster().labelFor(*camera));
    QString frames;
    if (burst()) {
        const int count = rig_.gapProfiler().gapBurstShutter().get() > 0 ? rig::SustainedBurst::longFrames
                                                                         : rig::SustainedBurst::shortFrames;
        frames = QStringLiteral("%1 frames, %2: %3 at least")
                     .arg(count)
                     .arg(everyText(planned()), secondsText(std::ceil(count * planned())));
    } else {
        frames = QStringLiteral("up to %1 frames, faster and faster, in about half a minute; a slow body "
                                "takes some minutes")
                     .arg(GapLadder::mostFrames());
    }
    if (!camera->isReal())
        return QStringLiteral("%1 is simulated: it goes through %2. Nothing is measured and no card fills.")
            .arg(name, frames);
    return QStringLiteral("⚠ %1 fires %2. Its card fills by as many, and nothing else can use it meanwhile.")
        .arg(name, frames);
}

QString GapProfilerView::progress() const {
    if (!running())
        return {};
    if (stopping_)
        return QStringLiteral("Stopping after the frame that is under way…");
    const rig::GapProfiler& profiler = rig_.gapProfiler();
    if (const auto& now = profiler.gapBurst().get())
        return QStringLiteral("Frame %1 of %2, %3")
            .arg(std::min(now->fired + 1, now->frames))
            .arg(now->frames)
            .arg(everyText(now->targetSec));
    return GapLadder::progress(profiler.gapProfileRows().get(), profiler.gapProfileRung().get());
}

int GapProfilerView::burstFrames() const {
    const auto& now = rig_.gapProfiler().gapBurst().get();
    return now ? now->frames : 0;
}

QString GapProfilerView::burstMarks() const {
    return burstMarks_.text(burstFrames());
}

int GapProfilerView::firstMiss() const {
    const auto& now = rig_.gapProfiler().gapBurst().get();
    return now && now->missing > 0 ? now->cleanFrames : -1;
}

QString GapProfilerView::burstText() const {
    const auto& now = rig_.gapProfiler().gapBurst().get();
    if (!now)
        return {};
    QString text = QStringLiteral("● %1 clean").arg(now->cleanFrames);
    if (now->missing > 0)
        text += QStringLiteral(" · ▲ %1 missing, the first was frame %2")
                    .arg(now->missing)
                    .arg(now->cleanFrames + 1);
    if (now->cadenceSec > 0)
        text +=
            QStringLiteral(" · %1 (asked: %2)").arg(everyText(now->cadenceSec), secondsText(now->targetSec));
    return text;
}

QString GapProfilerView::verdict() const {
    return qt(rig_.gapProfiler().gapProfileVerdict().get());
}

std::vector<GapProfilerView::Floor> GapProfilerView::floorsOf(const std::string& model) const {
    const rig::MeasuredFloors& known = rig_.floors();
    std::vector<Floor> floors;
    const auto add = [&](const char* name, const QString& value) {
        floors.push_back({QString::fromLatin1(name), value});
    };
    if (const auto floor = known.measuredFloor(model))
        add("Frames that change a setting", everyText(*floor));
    if (const auto floor = known.measuredSameFloor(model))
        add("Identical frames", everyText(*floor));
    if (const auto floor = known.sustainedFloor(model))
        add("Held through a burst", everyText(*floor));
    if (const auto depth = known.burstDepth(model))
        add("Before the buffer was full",
            QStringLiteral("%1 frames, %2").arg(depth->frames).arg(everyText(depth->cadenceSec)));
    if (const auto frames = known.longFrameFloor(model))
        add("Long frames",
            QStringLiteral("%1, %2: %3")
                .arg(qt(exposure::shutterLabel(frames->shutterSec)), everyText(frames->cadenceSec),
                     frames->held ? QStringLiteral("held") : QStringLiteral("▲ not held")));
    return floors;
}

QString GapProfilerView::storedTitle() const {
    const auto camera = body_.camera();
    const std::string model = showsResult_ ? shownModel_ : camera ? camera->model() : std::string();
    if (model.empty())
        return {};
    const QString name = qt(rig::CameraRoster::bareModel(model));
    return floorsOf(model).empty() ? QStringLiteral("Nothing is stored for bodies of the model %1").arg(name)
                                   : QStringLiteral("Stored for bodies of the model %1").arg(name);
}

QVariantList GapProfilerView::stored() const {
    const auto camera = body_.camera();
    QVariantList rows;
    for (const Floor& floor : floorsOf(showsResult_ ? shownModel_
                                       : camera     ? camera->model()
                                                    : std::string())) {
        QString before;
        const auto its = std::ranges::find(before_, floor.name, &Floor::name);
        if (showsResult_ && its == before_.end())
            before = QStringLiteral("new");
        else if (showsResult_ && its->value != floor.value)
            before = QStringLiteral("before: ") + its->value;
        rows.append(QVariantMap{{QStringLiteral("name"), floor.name},
                                {QStringLiteral("value"), floor.value},
                                {QStringLiteral("before"), before}});
    }
    return rows;
}

QString GapProfilerView::meaning() const {
    const auto camera = body_.camera();
    if (!camera)
        return {};
    const rig::CadenceAdvisor& advisor = rig_.cadence();
    const auto span = [](double seconds) { return qt(rig::fmtSecs(seconds)); };
    const double floor = advisor.bodyFloorSec(*camera);
    const auto gap = advisor.tightestGap(*camera);
    QString text;
    if (floor > 0)
        text = QStringLiteral("In scripts leave %1 or more between its frames (%2).")
                   .arg(span(floor), qt(advisor.floorLabel(*camera)));
    else
        text = camera->isReal() ? QStringLiteral("No limit is known for bodies of its driver.")
                                : QStringLiteral("A simulated body has no limit.");
    if (gap && floor > 0)
        text += QStringLiteral(" The present script has frames %1 apart: %2.")
                    .arg(span(*gap),
                         *gap < floor ? QStringLiteral("▲ too tight") : QStringLiteral("✓ it has the time"));
    if (floor > 0)
        text += QStringLiteral(" For all bodies here: %1 where a setting changes, %2 where none does.")
                    .arg(span(advisor.suggestedMinSpacingSec()), span(advisor.suggestedSameGapSec()));
    return text;
}

QVariantList GapProfilerView::history() const {
    QVariantList rows;
    for (const auto& past : rig_.gapProfiler().history().get())
        rows.append(QVariantMap{
            {QStringLiteral("time"), qt(base::formatTime("%H:%M:%S", past.at, rig_.site().timeZone()))},
            {QStringLiteral("name"), qt(past.cameraName)},
            {QStringLiteral("kind"), kindText(past.mode, past.settings)},
            {QStringLiteral("verdict"), qt(past.verdict)}});
    return rows;
}

} // namespace zenka::ui
