#include "ui/framing/FramingView.h"

#include "ports/Ports.h"
#include "rig/RigModel.h"
#include "rig/shared/SettingsKeys.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <algorithm>
#include <array>

namespace zenka::ui {

namespace {

namespace Framing = eclipse::Framing;

constexpr std::array<double, 3> converterFactors{1, 1.4, 2};
constexpr double usualFocal = 400;

template <std::size_t N>
QStringList wordsOf(const std::array<double, N>& values, const char* unit) {
    QStringList words;
    for (const double value : values)
        words.append(QString::number(value) + QString::fromUtf8(unit));
    return words;
}

bool inList(int row, std::size_t count) {
    return row >= 0 && static_cast<std::size_t>(row) < count;
}

} // namespace

FramingView::FramingView(rig::RigModel& rig, const ports::Ports& ports, QObject* parent)
    : QObject(parent), rig_(rig), ports_(ports), book_(ports.settings, rig.library()),
      choice_(framingChoiceFrom(ports.settings.text(rig::settingsKeys::framingChoice).value_or(""))),
      bursts_(new FramingBursts(rig, this)), bodyRows_(framedBodies(rig)) {
    const auto follow = [this] {
        if (shown_)
            look();
    };
    observe(this, rig.roster().changed(), follow);
    observe(this, rig.library().changed(), follow);
    observe(this, rig.script().compiled(), follow);
    observe(this, rig.site().recomputed(), follow);
}

void FramingView::open() {
    if (shown_)
        return;
    shown_ = true;
    bodyRows_ = framedBodies(rig_);
    followContacts();
    take(findFramed(bodyRows_, chosenId_, choice_.serial, choice_.label).value_or(0));
}

void FramingView::close() {
    save();
    shown_ = false;
}

void FramingView::keepChoice() {
    choice_.serial = framed().serial;
    choice_.label = framed().label;
    chosenId_ = framed().id;
    ports_.settings.setText(rig::settingsKeys::framingChoice, framingChoiceText(choice_));
}

bool FramingView::followContacts() {
    QStringList keys;
    for (const char* key : {"C1", "C2", "MAX", "C3", "C4"})
        if (rig_.site().contactTHours().contains(key))
            keys.append(QString::fromLatin1(key));
    const bool others = keys != moments_;
    moments_ = keys;
    return others;
}

void FramingView::look() {
    const FramedBody before = framed();
    std::vector<FramedBody> rows = framedBodies(rig_);
    const int row = findFramed(rows, before.id, before.serial, before.label).value_or(0);
    const FramedBody& now = rows[static_cast<std::size_t>(row)];
    const bool same = now.label == before.label && now.serial == before.serial;
    if (!same)
        save(); // for the one before
    const bool listed = rows != bodyRows_;
    bodyRows_ = std::move(rows);
    body_ = row;
    if (followContacts() || listed)
        Q_EMIT listsChanged();
    if (same)
        recompute();
    else
        take(row);
}

void FramingView::take(int row) {
    body_ = row;
    unsaved_ = false;
    record_ = book_.find(framed().serial, framed().label).value_or(cameras::FramingRecord{});
    if (!record_.focalMm)
        record_.focalMm = cameras::focalOf(framed().lens).value_or(usualFocal);
    fields_.fill(record_, sensorNow());
    Q_EMIT listsChanged();
    recompute();
}

void FramingView::save() {
    if (!unsaved_)
        return;
    unsaved_ = false;
    book_.keep(framed().serial, framed().label, record_);
}

void FramingView::choose(const QString& cameraId) {
    pick([id = cameraId.toStdString()](const FramedBody& body) { return body.id == id; });
}

void FramingView::chooseSerial(const QString& serial) {
    pick([text = serial.toStdString()](const FramedBody& body) { return body.serial == text; });
}

void FramingView::pick(const std::function<bool(const FramedBody&)>& wanted) {
    save();
    bodyRows_ = framedBodies(rig_);
    const auto found = std::ranges::find_if(bodyRows_, wanted);
    take(found == bodyRows_.end() ? 0 : static_cast<int>(found - bodyRows_.begin()));
    keepChoice();
}

void FramingView::type(const QString& field, const QString& text) {
    unsaved_ = fields_.type(field, text, record_) || unsaved_;
    recompute();
}

void FramingView::nudge(const QString& field, int steps) {
    unsaved_ = fields_.nudge(field, steps, record_) || unsaved_;
    recompute();
}

void FramingView::check() {
    fields_.check(record_);
    save();
    Q_EMIT changed();
}

void FramingView::pickBurst(int row) {
    if (bursts_->pick(row))
        recompute();
}

QStringList FramingView::bodies() const {
    QStringList names;
    for (const FramedBody& body : bodyRows_)
        names.append(qt(body.name));
    return names;
}

void FramingView::setBody(int row) {
    if (row == body_ || !inList(row, bodyRows_.size()))
        return;
    save();
    take(row);
    keepChoice();
}

cameras::Sensor FramingView::sensorNow() const {
    return FramingSensors::of(record_, framed().model);
}

QStringList FramingView::sensors() const {
    return FramingSensors::names(framed().model);
}

int FramingView::sensor() const {
    return FramingSensors::rowOf(record_);
}

void FramingView::setSensor(int row) {
    if (!FramingSensors::choose(row, framed().model, record_))
        return;
    unsaved_ = true;
    save();
    fields_.fill(record_, sensorNow());
    recompute();
}

QStringList FramingView::converters() const {
    return {QStringLiteral("no converter"), QStringLiteral("1.4× converter"), QStringLiteral("2× converter")};
}

int FramingView::converter() const {
    const auto found = std::ranges::find(converterFactors, record_.converter);
    return found == converterFactors.end() ? 0 : static_cast<int>(found - converterFactors.begin());
}

void FramingView::setConverter(int row) {
    if (row == converter() || !inList(row, converterFactors.size()))
        return;
    record_.converter = converterFactors[static_cast<std::size_t>(row)];
    unsaved_ = true;
    save();
    recompute();
}

QStringList FramingView::focals() const {
    QStringList words;
    for (const double focal : FramingFields::usualFocals())
        words.append(QString::number(focal) + QStringLiteral(" mm"));
    return words;
}

int FramingView::focal() const {
    const auto& usual = FramingFields::usualFocals();
    const auto above = std::ranges::upper_bound(usual, record_.focalMm.value_or(usualFocal));
    return std::max(0, static_cast<int>(above - usual.begin()) - 1);
}

void FramingView::setFocal(int row) {
    if (!inList(row, FramingFields::usualFocals().size()))
        return;
    type(QStringLiteral("focal"),
         QString::number(FramingFields::usualFocals()[static_cast<std::size_t>(row)]));
    check();
}

void FramingView::setTracking(bool tracking) {
    if (tracking == record_.tracking)
        return;
    record_.tracking = tracking;
    unsaved_ = true;
    save();
    recompute();
}

int FramingView::moment() const {
    const auto at = moments_.indexOf(qt(choice_.moment));
    return static_cast<int>(at >= 0 ? at : moments_.indexOf(QStringLiteral("MAX")));
}

void FramingView::setMoment(int row) {
    if (!inList(row, static_cast<std::size_t>(moments_.size())))
        return;
    choice_.moment = moments_.at(row).toStdString();
    keepChoice();
    recompute();
}

QStringList FramingView::aims() const {
    return {QStringLiteral("at each burst's begin"), moments_.contains(QStringLiteral("C2"))
                                                         ? QStringLiteral("at mid-totality")
                                                         : QStringLiteral("at the maximum")};
}

void FramingView::setAim(int row) {
    choice_.aimsAtMax = row == 1;
    keepChoice();
    recompute();
}

QStringList FramingView::radii() const {
    return wordsOf(FramingChoice::coronaRadii, " solar radii");
}

void FramingView::setRadius(int row) {
    if (!inList(row, FramingChoice::coronaRadii.size()))
        return;
    choice_.radii = row;
    keepChoice();
    recompute();
}

QStringList FramingView::trails() const {
    return wordsOf(FramingChoice::trailLengths, " px");
}

void FramingView::setTrail(int row) {
    if (!inList(row, FramingChoice::trailLengths.size()))
        return;
    choice_.trail = row;
    keepChoice();
    recompute();
}

int FramingView::verdictLevel() const {
    return verdict_.startsWith(QChar(0x2716)) ? 2 : verdict_.startsWith(QChar(0x25b2)) ? 1 : 0;
}

QString FramingView::keptText() const {
    if (framed().label.empty())
        return QStringLiteral("A plan without a body; it is kept for the next time.");
    if (!framed().serial.empty())
        return QStringLiteral("Kept with the body, by its serial number.");
    return QStringLiteral("Kept under the label %1; a body of that label takes it over.")
        .arg(qt(framed().label));
}

double FramingView::clockOf(const QString& contact) const {
    const auto& hours = rig_.site().contactTHours();
    const auto found = hours.find(contact.toStdString());
    return found == hours.end() ? 0 : found->second * 3600;
}

void FramingView::recompute() {
    const eclipse::Eclipse& eclipse = rig_.site().eclipse();
    const eclipse::Observer observer = rig_.site().observer();
    const QString moment = moments_.value(this->moment(), QStringLiteral("MAX"));
    const double hours = clockOf(moment) / 3600;
    const cameras::Sensor sensor = sensorNow();
    FramingFrame frame{.optics = {.widthMm = sensor.widthMm,
                                  .heightMm = sensor.heightMm,
                                  .widthPx = sensor.widthPx,
                                  .heightPx = sensor.heightPx,
                                  .focalMm = record_.focalMm.value_or(usualFocal),
                                  .converter = record_.converter,
                                  .rotationDeg = record_.rotationDeg},
                       .speed = Framing::sunSpeed(eclipse, hours, observer),
                       .tracking = record_.tracking,
                       .trailPx = choice_.trailPx(),
                       .wantedRadii = choice_.wantedRadii()};
    frame.facts = Framing::facts(frame.optics, Framing::sunRadiusDeg(eclipse, hours, observer));
    bursts_->look(framed(), frame, choice_.aimsAtMax);
    FramingPlan plan{.optics = frame.optics, .moment = hours * 3600, .wantedRadii = frame.wantedRadii};
    if (const auto burst = bursts_->picked(); burst && !record_.tracking) {
        plan.burst = burst;
        plan.aimed = choice_.aimsAtMax ? clockOf(QStringLiteral("MAX")) : burst->beginSec;
    }
    scene_ = framingScene(rig_.site(), plan);

    numbers_.clear();
    const auto number = [this](const QString& name, const QString& value) {
        numbers_.append(QVariantMap{{QStringLiteral("name"), name}, {QStringLiteral("value"), value}});
    };
    for (const FramingNumber& each : framingNumbers(frame))
        number(each.name, each.value);
    number(QStringLiteral("Moon at ") + moment, moonWords(scene_.sky));
    verdict_ = framingVerdict(frame);
    Q_EMIT changed();
}

} // namespace zenka::ui
