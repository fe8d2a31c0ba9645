#include "ui/bodies/TestShotView.h"

#include "rig/RigModel.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <utility>

namespace zenka::ui {

namespace {

using ExposureFields::Field;

std::size_t at(Field field) {
    return static_cast<std::size_t>(field);
}

} // namespace

TestShotView::TestShotView(rig::RigModel& rig, QObject* parent) : QObject(parent), rig_(rig) {
    const auto tell = [this] { Q_EMIT changed(); };
    observe(this, rig.testShots().changed(), tell);
    observe(this, rig.outcomes().changed(), tell);
    observe(this, rig.script().compiled(), tell);
    observe(this, rig.roster().changed(), [this] {
        followBody();
        Q_EMIT changed();
    });
}

void TestShotView::choose(const QString& cameraId) {
    cameraId_ = cameraId.toStdString();
    begin();
}

void TestShotView::open() {
    if (!body()) {
        const auto& cameras = rig_.roster().cameras();
        cameraId_ = cameras.empty() ? std::string() : cameras.front()->id();
    }
    begin();
}

void TestShotView::nextBody() {
    const auto& cameras = rig_.roster().cameras();
    const auto present =
        std::ranges::find(cameras, cameraId_, [](const auto& camera) { return camera->id(); });
    if (cameras.empty())
        return;
    const bool last = present == cameras.end() || std::next(present) == cameras.end();
    cameraId_ = (last ? cameras.front() : *std::next(present))->id();
    begin();
}

void TestShotView::begin() {
    refusal_.clear();
    const auto camera = body();
    serial_ = camera ? camera->serial() : std::string();
    if (camera && !draft().typed) {
        if (auto fromScript = scriptDraft())
            draft() = *std::move(fromScript);
        else
            draft() = {.texts = lastTyped_, .faults = {}, .frame = {}};
    }
    Q_EMIT changed();
}

/// A body that has got another driver is the same one.
void TestShotView::followBody() {
    if (body() || serial_.empty())
        return;
    for (const auto& camera : rig_.roster().cameras()) {
        if (camera->serial() != serial_)
            continue;
        if (auto kept = drafts_.extract(cameraId_); !kept.empty()) {
            drafts_.erase(camera->id());
            kept.key() = camera->id();
            drafts_.insert(std::move(kept));
        }
        cameraId_ = camera->id();
        return;
    }
}

std::optional<TestShotView::Draft> TestShotView::scriptDraft() const {
    const auto camera = body();
    const auto next = camera ? rig_.testShots().nextCapture(*camera) : std::nullopt;
    if (!next)
        return std::nullopt;
    Draft draft{.texts = {}, .faults = {}, .frame = next->refLabel};
    for (const Field field : ExposureFields::all)
        draft.texts[at(field)] = ExposureFields::textOf(field, rig::shotOf(*next));
    return draft;
}

void TestShotView::type(Field field, const QString& text) {
    if (!hasBody())
        return;
    Draft& typed = draft();
    typed.texts[at(field)] = text.toStdString();
    typed.typed = true;
    typed.frame.clear();
    // Not while it is being typed, but a fault that has been told goes as soon as it is mended.
    std::string& told = typed.faults[at(field)];
    if (!told.empty())
        told = ExposureFields::read(field, typed.texts[at(field)]).fault;
    lastTyped_ = typed.texts;
    refusal_.clear();
    Q_EMIT changed();
}

void TestShotView::nudge(Field field, int steps) {
    type(field, qt(ExposureFields::nudged(field, text(field).toStdString(), steps)));
}

void TestShotView::check() {
    if (!hasBody())
        return;
    Draft& typed = draft();
    for (const Field field : ExposureFields::all)
        typed.faults[at(field)] = ExposureFields::read(field, typed.texts[at(field)]).fault;
    Q_EMIT changed();
}

void TestShotView::takeScript() {
    if (auto fromScript = scriptDraft())
        draft() = *std::move(fromScript);
    Q_EMIT changed();
}

void TestShotView::fire() {
    const auto camera = body();
    if (!camera || firing())
        return;
    check();
    Draft& typed = draft();
    if (std::ranges::any_of(typed.faults, [](const std::string& fault) { return !fault.empty(); }))
        return;
    const auto value = [&](Field field) { return ExposureFields::read(field, typed.texts[at(field)]).value; };
    refusal_ = qt(rig_.testShots().fire(camera, {.iso = static_cast<int>(value(Field::iso)),
                                                 .aperture = value(Field::aperture),
                                                 .shutterSec = value(Field::shutter)}));
    if (refusal_.isEmpty())
        draft().typed = false;
    Q_EMIT changed();
}

std::shared_ptr<cameras::CameraControl> TestShotView::body() const {
    const auto& cameras = rig_.roster().cameras();
    const auto found = std::ranges::find(cameras, cameraId_, [](const auto& camera) { return camera->id(); });
    return found == cameras.end() ? nullptr : *found;
}

bool TestShotView::hasOthers() const {
    return std::ranges::any_of(rig_.roster().cameras(),
                               [this](const auto& camera) { return camera->id() != cameraId_; });
}

QString TestShotView::bodyName() const {
    const auto camera = body();
    return camera ? qt(rig_.roster().labelFor(*camera)) : QString();
}

QString TestShotView::bodyFacts() const {
    const auto camera = body();
    if (!camera)
        return QStringLiteral(
            "There is no body to test. Detect one, or add a simulated one, in the Cameras panel.");
    QString facts = qt(rig::CameraRoster::bareModel(camera->model()));
    if (!camera->isReal())
        return facts + QStringLiteral(" · simulated: it answers, and no shutter moves");
    facts += QStringLiteral(" · ") + qt(camera->backend());
    if (const std::string port = camera->port(); !port.empty())
        facts += u' ' + qt(port);
    if (!camera->connected() || rig_.roster().isDisconnected(camera->id()))
        facts += QStringLiteral(" · ○ not connected");
    return facts;
}

QString TestShotView::text(Field field) const {
    const auto found = drafts_.find(cameraId_);
    return found == drafts_.end() ? QString() : qt(found->second.texts[at(field)]);
}

QString TestShotView::fault(Field field) const {
    const auto found = drafts_.find(cameraId_);
    return found == drafts_.end() ? QString() : qt(found->second.faults[at(field)]);
}

QString TestShotView::origin() const {
    const auto found = drafts_.find(cameraId_);
    if (!hasBody() || found == drafts_.end())
        return {};
    QString left = QStringLiteral("An empty field leaves the body's own setting.");
    if (found->second.frame.empty())
        return left;
    return QStringLiteral("As its next frame in the script, ") + qt(found->second.frame) +
           QStringLiteral(". ") + left;
}

QString TestShotView::scriptOffer() const {
    const auto found = drafts_.find(cameraId_);
    const auto fromScript = scriptDraft();
    if (!fromScript || found == drafts_.end() || found->second.texts == fromScript->texts)
        return {};
    return qt(fromScript->frame);
}

bool TestShotView::firing() const {
    return rig_.testShots().firing(cameraId_);
}

QString TestShotView::progress() const {
    const auto& lastFire = rig_.outcomes().lastFire();
    const auto last = lastFire.find(cameraId_);
    return firing() && last != lastFire.end() ? qt(last->second) : QString();
}

bool TestShotView::hasResult() const {
    return !firing() && rig_.testShots().result(cameraId_).has_value();
}

bool TestShotView::resultGood() const {
    const auto result = rig_.testShots().result(cameraId_);
    return result && result->ok;
}

QString TestShotView::resultText() const {
    const auto result = rig_.testShots().result(cameraId_);
    if (!result || firing())
        return {};
    return result->ok ? qt(absl::StrFormat("✓ %.0f ms", result->latencyMs))
                      : QStringLiteral("✖ ") + qt(result->phrase);
}

QString TestShotView::resultDetail() const {
    const auto result = rig_.testShots().result(cameraId_);
    if (!result || firing())
        return {};
    QStringList parts{QStringLiteral("Asked: ") + qt(result->settings)};
    if (!result->sentShutter.empty())
        parts.append(QStringLiteral("shutter sent: ") + qt(result->sentShutter));
    if (!result->note.empty() && result->note != result->phrase)
        parts.append(QStringLiteral("the driver said: ") + qt(result->note));
    return parts.join(QStringLiteral(" · "));
}

QString TestShotView::advice() const {
    const auto result = rig_.testShots().result(cameraId_);
    return result && result->advice && !firing() ? qt(*result->advice) : QString();
}

} // namespace zenka::ui
