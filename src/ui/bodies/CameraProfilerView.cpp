#include "ui/bodies/CameraProfilerView.h"

#include "base/Text.h"
#include "exposure/ExposureScales.h"
#include "rig/RigModel.h"
#include "ui/kit/ExposureFields.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <QVariantMap>

#include <algorithm>
#include <cmath>
#include <functional>

namespace zenka::ui {

namespace {

/// A value of a body's list as a number; nothing for words.
using Read = std::function<std::optional<double>(const std::string& text)>;

std::optional<double> readAperture(const std::string& text) {
    return base::readNumber(ExposureFields::bareAperture(text));
}

std::optional<double> readPlain(const std::string& text) {
    return base::readNumber(ExposureFields::bare(text, "", ""));
}

/// "55 values, 1/8000 to 30": the least and the greatest in the body's own words.
QString summaryOf(const std::vector<std::string>& values, const Read& read) {
    if (values.empty())
        return QStringLiteral("none");
    QString text =
        values.size() == 1 ? QStringLiteral("1 value") : QStringLiteral("%1 values").arg(values.size());
    const std::string* least = nullptr;
    const std::string* greatest = nullptr;
    double low = 0;
    double high = 0;
    for (const std::string& each : values) {
        const auto value = read(each);
        if (!value || !std::isfinite(*value))
            continue;
        if (!least || *value < low) {
            least = &each;
            low = *value;
        }
        if (!greatest || *value > high) {
            greatest = &each;
            high = *value;
        }
    }
    if (least && low < high)
        text += QStringLiteral(", %1 to %2").arg(qt(*least), qt(*greatest));
    return text;
}

} // namespace

CameraProfilerView::CameraProfilerView(rig::RigModel& rig, QObject* parent)
    : QObject(parent), rig_(rig), body_(rig.roster()), read_(rig.roster()) {
    observe(this, rig.cameraProfiler().cameraProfileRunning().changed(), [this](bool) {
        for (const auto& camera : rig_.roster().cameras()) {
            if (rig_.inUse().has(camera->id(), rig::BodiesInUse::Task::reading))
                read_.choose(camera->id());
        }
        Q_EMIT changed();
    });
    observe(this, rig.cameraProfiler().cameraProfileResult().changed(), [this](const auto&) {
        Q_EMIT changed();
        Q_EMIT resultChanged();
    });
    observe(this, rig.library().changed(), [this] { Q_EMIT changed(); });
    observe(this, rig.roster().changed(), [this] {
        body_.follow();
        read_.follow();
        Q_EMIT changed();
    });
}

void CameraProfilerView::open() {
    body_.settle();
    refusal_.clear();
    Q_EMIT changed();
}

void CameraProfilerView::choose(const QString& cameraId) {
    body_.choose(cameraId.toStdString());
    refusal_.clear();
    Q_EMIT changed();
}

void CameraProfilerView::read() {
    refusal_ = qt(rig_.cameraProfiler().runCameraProfile(body_.id()));
    Q_EMIT changed();
}

void CameraProfilerView::add() {
    if (const auto camera = bodyRead(); camera && mayAdd())
        rig_.library().noteLabel(*camera, rig_.roster().labelFor(*camera));
}

void CameraProfilerView::setLens(const QString& lens) {
    rig_.library().setLens(serial(), lens.toStdString());
}

QString CameraProfilerView::bodyId() const {
    return qt(body_.id());
}

QString CameraProfilerView::bodyName() const {
    const auto camera = body_.camera();
    return camera ? qt(rig_.roster().labelFor(*camera)) : QString();
}

bool CameraProfilerView::reading() const {
    return rig_.cameraProfiler().cameraProfileRunning().get();
}

QString CameraProfilerView::progress() const {
    if (!reading())
        return {};
    const auto camera = bodyRead();
    return QStringLiteral(
               "Reading what %1 offers. Most bodies answer in seconds, some take up to two minutes…")
        .arg(camera ? qt(rig_.roster().labelFor(*camera)) : QStringLiteral("the body"));
}

bool CameraProfilerView::hasResult() const {
    return rig_.cameraProfiler().cameraProfileResult().get().has_value();
}

QString CameraProfilerView::title() const {
    const auto& result = rig_.cameraProfiler().cameraProfileResult().get();
    if (!result)
        return {};
    return qt(rig::CameraRoster::bareModel(result->model)) +
           (result->serial.empty() ? QStringLiteral(", tells no serial number")
                                   : QStringLiteral(", serial number ") + qt(result->serial));
}

QString CameraProfilerView::error() const {
    const auto& result = rig_.cameraProfiler().cameraProfileResult().get();
    return result ? qt(result->error) : QString();
}

QVariantList CameraProfilerView::choices() const {
    const auto& result = rig_.cameraProfiler().cameraProfileResult().get();
    if (!result || result->choices.empty())
        return {};
    QVariantList rows;
    const auto add = [&](const char* name, const std::vector<std::string>& values, const Read& read) {
        QStringList words;
        for (const std::string& value : values)
            words.append(qt(value).replace(u' ', QChar::Nbsp)); // a value is not broken over two lines
        rows.append(QVariantMap{{QStringLiteral("name"), QString::fromLatin1(name)},
                                {QStringLiteral("summary"), summaryOf(values, read)},
                                {QStringLiteral("values"), words.join(QStringLiteral("  "))}});
    };
    const cameras::ExposureChoices& choices = result->choices;
    add("Shutter", choices.shutter, exposure::readShutterChoice);
    add("ISO", choices.iso, readPlain);
    add("Aperture", choices.aperture, readAperture);
    if (!choices.expComp.empty())
        add("Exposure compensation", choices.expComp, readPlain);
    return rows;
}

std::string CameraProfilerView::serial() const {
    const auto& result = rig_.cameraProfiler().cameraProfileResult().get();
    return result ? result->serial : std::string();
}

std::shared_ptr<cameras::CameraControl> CameraProfilerView::bodyRead() const {
    return read_.camera();
}

bool CameraProfilerView::known() const {
    return rig_.library().find(serial()).has_value();
}

bool CameraProfilerView::mayAdd() const {
    const auto camera = bodyRead();
    return hasResult() && camera && camera->isReal() && !serial().empty() && !known() &&
           !rig_.roster().serialShared(serial());
}

QString CameraProfilerView::libraryText() const {
    const auto camera = bodyRead();
    if (!hasResult() || (camera && !camera->isReal()))
        return {};
    if (serial().empty())
        return QStringLiteral("It cannot be remembered among your cameras, as it tells no serial number.");
    if (const auto entry = rig_.library().find(serial()))
        return QStringLiteral("Is among your cameras as %1.").arg(qt(entry->label));
    if (rig_.roster().serialShared(serial()))
        return QStringLiteral(
            "Two bodies report this serial number, so neither can be remembered. Unplug the "
            "other one, then add this one.");
    if (!camera)
        return QStringLiteral("Is not among your cameras, and is not here any more.");
    return QStringLiteral("Is not among your cameras yet.");
}

QString CameraProfilerView::lens() const {
    const auto entry = rig_.library().find(serial());
    return entry ? qt(entry->lens.value_or(std::string())) : QString();
}

} // namespace zenka::ui
