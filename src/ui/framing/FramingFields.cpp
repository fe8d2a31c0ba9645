#include "ui/framing/FramingFields.h"

#include "base/Text.h"
#include "ui/kit/QtText.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zenka::ui {

namespace {

struct FieldRule {
    const char* name;
    double least;
    double most;
    double step;
    bool mayBeEmpty;
    const char* fault;
};

constexpr std::array<FieldRule, 6> fieldRules{
    {{"focal", 4, 5000, 0, false, "A focal length is 4 to 5000 mm."},
     {"rotation", -180, 180, 5, false, "A turn is −180 to 180 degrees."},
     {"ownWidth", 1, 200, 0.1, false, "A side of a sensor is 1 to 200 mm."},
     {"ownHeight", 1, 200, 0.1, false, "A side of a sensor is 1 to 200 mm."},
     {"ownWidthPx", 100, 100000, 1, true, "100 to 100000 pixels; leave both empty if you do not know them."},
     {"ownHeightPx", 100, 100000, 1, true,
      "100 to 100000 pixels; leave both empty if you do not know them."}}};

const FieldRule* ruleOf(const QString& field) {
    const auto found = std::ranges::find_if(
        fieldRules, [&](const FieldRule& rule) { return field == QLatin1String(rule.name); });
    return found == fieldRules.end() ? nullptr : &*found;
}

/// "400", "35.6"
QString numberText(double value) {
    QString text = QString::number(value, 'f', 2);
    while (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return text;
}

QString pixelText(int count) {
    return count > 0 ? QString::number(count) : QString();
}

/// The next usual focal lengths from one on.
double nudgedFocal(double now, int steps) {
    const auto& usual = FramingFields::usualFocals();
    for (; steps > 0; --steps) {
        const auto next = std::ranges::upper_bound(usual, now);
        now = next == usual.end() ? now : *next;
    }
    for (; steps < 0; ++steps) {
        const auto next = std::ranges::lower_bound(usual, now);
        now = next == usual.begin() ? now : *(next - 1);
    }
    return now;
}

} // namespace

const std::vector<double>& FramingFields::usualFocals() {
    static const std::vector<double> usual{14,  20,   24,   35,   50,   70,   85,   100, 135, 180,
                                           200, 250,  300,  360,  400,  480,  500,  530, 600, 700,
                                           800, 1000, 1200, 1500, 2000, 2500, 2800, 3000};
    return usual;
}

void FramingFields::fill(const cameras::FramingRecord& record, const cameras::Sensor& sensor) {
    faults_.clear();
    texts_[QStringLiteral("focal")] = numberText(record.focalMm.value_or(0));
    texts_[QStringLiteral("rotation")] = numberText(record.rotationDeg);
    const cameras::Sensor& own = record.own.value_or(sensor);
    texts_[QStringLiteral("ownWidth")] = numberText(own.widthMm);
    texts_[QStringLiteral("ownHeight")] = numberText(own.heightMm);
    texts_[QStringLiteral("ownWidthPx")] = pixelText(own.widthPx);
    texts_[QStringLiteral("ownHeightPx")] = pixelText(own.heightPx);
}

std::optional<double> FramingFields::number(const QString& field) const {
    const FieldRule* rule = ruleOf(field);
    // A comma stands for the point, and a minus sign may be the one that is printed.
    const std::string text =
        base::replacedAll(base::replacedAll(texts_.value(field).toString().trimmed().toStdString(), ",", "."),
                          base::minusSign, "-");
    if (!rule || (text.empty() && !rule->mayBeEmpty))
        return std::nullopt;
    if (text.empty())
        return 0;
    const auto value = base::readNumber(text);
    const bool whole = !rule->mayBeEmpty || (value && *value == std::floor(*value));
    return value && whole && *value >= rule->least && *value <= rule->most ? value : std::nullopt;
}

bool FramingFields::take(const QString& field, cameras::FramingRecord& record) const {
    const cameras::FramingRecord before = record;
    const auto value = number(field);
    if (!value)
        return false;
    if (field == QLatin1String("focal"))
        record.focalMm = *value;
    else if (field == QLatin1String("rotation"))
        record.rotationDeg = *value == -180 ? 180 : *value;
    else if (record.own) {
        const auto part = [this](const char* name) { return number(QLatin1String(name)); };
        const auto width = part("ownWidth");
        const auto height = part("ownHeight");
        const auto widthPx = part("ownWidthPx");
        const auto heightPx = part("ownHeightPx");
        const cameras::Sensor own{.widthMm = width.value_or(0),
                                  .heightMm = height.value_or(0),
                                  .widthPx = static_cast<int>(widthPx.value_or(-1)),
                                  .heightPx = static_cast<int>(heightPx.value_or(-1))};
        if (cameras::plausible(own))
            record.own = own;
    }
    return record != before;
}

bool FramingFields::type(const QString& field, const QString& text, cameras::FramingRecord& record) {
    texts_[field] = text;
    faults_.remove(field);
    return take(field, record);
}

bool FramingFields::nudge(const QString& field, int steps, cameras::FramingRecord& record) {
    const FieldRule* rule = ruleOf(field);
    const auto now = number(field);
    if (!rule || !now)
        return false;
    const double value = rule->step == 0 ? nudgedFocal(*now, steps) : *now + steps * rule->step;
    return type(field, numberText(std::clamp(value, rule->least, rule->most)), record);
}

void FramingFields::check(const cameras::FramingRecord& record) {
    faults_.clear();
    for (const FieldRule& rule : fieldRules) {
        const QString field = QLatin1String(rule.name);
        if (field.startsWith(QLatin1String("own")) && !record.own)
            continue;
        if (!number(field))
            faults_[field] = QString::fromUtf8(rule.fault);
    }
    const auto width = number(QStringLiteral("ownWidthPx"));
    const auto height = number(QStringLiteral("ownHeightPx"));
    if (record.own && width && height && (*width == 0) != (*height == 0))
        faults_[*width == 0 ? QStringLiteral("ownWidthPx") : QStringLiteral("ownHeightPx")] =
            QString::fromUtf8(fieldRules.back().fault);
}

} // namespace zenka::ui
