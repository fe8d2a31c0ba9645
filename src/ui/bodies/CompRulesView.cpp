#include "ui/bodies/CompRulesView.h"

#include "exposure/ExposureScales.h"
#include "rig/RigModel.h"
#include "ui/kit/ExposureFields.h"
#include "ui/kit/QtText.h"

#include <QVariantMap>

#include <algorithm>
#include <utility>

namespace zenka::ui {

using exposure::CompRules;

namespace {

constexpr std::array<const char*, 3> limitNames{"ISO, lowest to highest", "Shutter, fastest to slowest",
                                                "Aperture, widest to narrowest"};

QString shutterText(double seconds) {
    return qt(exposure::snapToStandard(seconds));
}

/// What was typed, 0 where it cannot be read: every limit is above 0.
double typedValue(ExposureFields::Field field, const QString& text) {
    return ExposureFields::read(field, text.toStdString()).value;
}

} // namespace

CompRulesView::CompRulesView(rig::RigModel& rig, QObject* parent) : QObject(parent), rig_(rig) {
    take({});
}

void CompRulesView::take(const CompRules& rules) {
    rules_ = rules;
    // Each variable has its place, also one that stored rules leave out.
    for (const auto variable : CompRules().order)
        if (std::ranges::count(rules_.order, variable) == 0)
            rules_.order.push_back(variable);
    typed_ = {{{QString::number(rules.isoMin), QString::number(rules.isoMax)},
               {shutterText(rules.shutterFastestSec), shutterText(rules.shutterSlowestSec)},
               {QString::number(rules.apertureWidest), QString::number(rules.apertureNarrowest)}}};
    Q_EMIT changed();
}

void CompRulesView::open(const QString& token) {
    const std::string wanted = token.toStdString();
    if (std::exchange(token_, wanted) != wanted || !edited())
        take(rig_.exposure().rules().compRules(token_));
}

void CompRulesView::discard() {
    take(rig_.exposure().rules().compRules(token_));
}

QString CompRulesView::origin() const {
    return rig_.exposure().rules().hasSavedCompRules(token_)
               ? QStringLiteral("Saved rules of this camera.")
               : QStringLiteral(
                     "No rules are saved for this camera yet, so it is not compensated. These are the "
                     "usual ones; save them as they are or change them.");
}

QVariantList CompRulesView::order() const {
    QVariantList rows;
    for (const auto variable : rules_.order)
        rows.append(QVariantMap{{QStringLiteral("label"), qt(exposure::label(variable))},
                                {QStringLiteral("on"), std::ranges::count(rules_.enabled, variable) > 0}});
    return rows;
}

void CompRulesView::setOn(int place, bool on) {
    if (place < 0 || place >= static_cast<int>(rules_.order.size()))
        return;
    const auto variable = rules_.order[static_cast<std::size_t>(place)];
    std::erase(rules_.enabled, variable);
    if (on)
        rules_.enabled.push_back(variable);
    Q_EMIT changed();
}

void CompRulesView::moveUp(int place) {
    if (place < 1 || place >= static_cast<int>(rules_.order.size()))
        return;
    const auto at = static_cast<std::size_t>(place);
    std::swap(rules_.order[at - 1], rules_.order[at]);
    Q_EMIT changed();
}

void CompRulesView::setBalanced(bool balanced) {
    if (std::exchange(rules_.balanced, balanced) != balanced)
        Q_EMIT changed();
}

QVariantList CompRulesView::limits() const {
    QVariantList rows;
    for (std::size_t i = 0; i < typed_.size(); ++i)
        rows.append(QVariantMap{{QStringLiteral("name"), QString::fromLatin1(limitNames[i])},
                                {QStringLiteral("low"), typed_[i][0]},
                                {QStringLiteral("high"), typed_[i][1]}});
    return rows;
}

void CompRulesView::typeLimit(int pair, bool high, const QString& text) {
    if (pair < 0 || pair >= static_cast<int>(typed_.size()))
        return;
    typed_[static_cast<std::size_t>(pair)][high ? 1 : 0] = text;
    Q_EMIT changed();
}

std::string CompRulesView::read(CompRules& rules) const {
    rules = rules_;
    const auto& [iso, shutter, aperture] = typed_;
    using ExposureFields::Field;
    rules.isoMin = static_cast<int>(typedValue(Field::iso, iso[0]));
    rules.isoMax = static_cast<int>(typedValue(Field::iso, iso[1]));
    rules.shutterFastestSec = typedValue(Field::shutter, shutter[0]);
    rules.shutterSlowestSec = typedValue(Field::shutter, shutter[1]);
    rules.apertureWidest = typedValue(Field::aperture, aperture[0]);
    rules.apertureNarrowest = typedValue(Field::aperture, aperture[1]);
    if (rules.isoMin == 0 || rules.isoMax == 0)
        return "An ISO is a whole number, as 100.";
    if (rules.shutterFastestSec == 0 || rules.shutterSlowestSec == 0)
        return "A shutter is written as 1/500 or 0.25, in seconds.";
    if (rules.apertureWidest == 0 || rules.apertureNarrowest == 0)
        return "An aperture is an f-number, as 5.6.";
    return rig::CompRulesBook::fault(rules);
}

QString CompRulesView::fault() const {
    CompRules rules;
    return qt(read(rules));
}

bool CompRulesView::edited() const {
    CompRules rules;
    return !read(rules).empty() || rules != rig_.exposure().rules().compRules(token_);
}

bool CompRulesView::save() {
    CompRules rules;
    if (!read(rules).empty())
        return false;
    rig_.exposure().rules().saveCompRules(rules, token_);
    Q_EMIT changed();
    return true;
}

} // namespace zenka::ui
