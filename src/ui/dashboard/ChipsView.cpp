#include "ui/dashboard/ChipsView.h"

#include "rig/RigModel.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <QStringList>
#include <QVariantMap>

namespace zenka::ui {

ChipsView::ChipsView(rig::RigModel& rig, QObject* parent) : QObject(parent), rig_(rig) {
    observe(this, rig.sleepGuard().heldForLive().changed(), [this](const auto&) { Q_EMIT changed(); });
    observe(this, rig.cards().cards().changed(), [this](const auto&) { Q_EMIT changed(); });
    observe(this, rig.transport().activityChanged(), [this] { Q_EMIT changed(); });
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

QString ChipsView::cardsBrief() const {
    const auto& cards = rig_.cards().cards().get();
    if (cards.empty() || rig_.transport().live())
        return {};
    return cards.size() == 1 ? QStringLiteral("Card") : counted(static_cast<qsizetype>(cards.size()), "card");
}

QString ChipsView::cards() const {
    const auto& cards = rig_.cards().cards().get();
    const QString brief = cardsBrief();
    return brief.isEmpty() || cards.size() > 1 ? brief
                                               : brief + u' ' + qt(rig::CardWatch::nameOf(cards.front()));
}

QString ChipsView::cardsWords() const {
    QStringList names;
    for (const auto& card : rig_.cards().cards().get())
        names.append(qt(rig::CardWatch::nameOf(card)));
    const bool one = names.size() == 1;
    return (one ? QStringLiteral("Card %1 is in. The Simulation Analyzer compares it with the script.")
                : QStringLiteral("Cards %1 are in. The Simulation Analyzer compares one with the script."))
        .arg(names.join(QStringLiteral(", ")));
}

} // namespace zenka::ui
