#include "ui/wizard/WizardWords.h"

#include "ui/kit/QtText.h"

#include <QStringList>
#include <QVariantMap>

namespace zenka::ui::WizardWords {

namespace {

namespace Guide = script::EspenakGuide;

QString symbolOf(Guide::Level level) {
    switch (level) {
    case Guide::Level::good: return QStringLiteral("✓");
    case Guide::Level::warn: return QStringLiteral("▲");
    case Guide::Level::bad: break;
    }
    return QStringLiteral("✖");
}

QString wordOf(Guide::Level level) {
    return level == Guide::Level::good   ? QStringLiteral("good")
           : level == Guide::Level::warn ? QStringLiteral("warning")
                                         : QStringLiteral("bad");
}

} // namespace

QString site(const WizardSite& site) {
    const QString where = qt(site.label);
    switch (site.central) {
    case WizardForm::Central::total:
        return QStringLiteral("%1, totality %2 s").arg(where).arg(site.totalitySec, 0, 'f', 1);
    case WizardForm::Central::annular: return QStringLiteral("%1, annular").arg(where);
    case WizardForm::Central::none: break;
    }
    return site.seen ? QStringLiteral("%1, partial").arg(where)
                     : QStringLiteral("%1, eclipse not seen").arg(where);
}

QString summary(const WizardPreview& preview) {
    QString words = counted(preview.frames, "frame") + QStringLiteral(" on ") +
                    counted(static_cast<int>(preview.cameras.size()), "camera");
    if (preview.cues > 0)
        words += QStringLiteral(", ") + counted(preview.cues, "cue");
    return words;
}

QVariantList cameras(const WizardPreview& preview, const WizardSite& site) {
    QVariantList rows;
    for (const WizardCamera& camera : preview.cameras) {
        QString used;
        if (site.central == WizardForm::Central::total && site.totalitySec > 0)
            used = QStringLiteral("%1 in totality, %2 s of %3 s used (%4 %)")
                       .arg(camera.framesInTotality)
                       .arg(camera.usedSec, 0, 'f', 1)
                       .arg(site.totalitySec, 0, 'f', 1)
                       .arg(qRound(100 * camera.usedSec / site.totalitySec));
        rows.append(QVariantMap{{QStringLiteral("name"), qt(camera.name)},
                                {QStringLiteral("frames"), counted(camera.frames, "frame")},
                                {QStringLiteral("used"), used}});
    }
    return rows;
}

QVariantMap row(WizardRemark::Kind kind, const QString& text) {
    const bool error = kind == WizardRemark::Kind::error;
    const bool note = kind == WizardRemark::Kind::note;
    return {{QStringLiteral("symbol"), error  ? QStringLiteral("✖")
                                       : note ? QStringLiteral("·")
                                              : QStringLiteral("▲")},
            {QStringLiteral("kind"), error  ? QStringLiteral("error")
                                     : note ? QStringLiteral("note")
                                            : QStringLiteral("warning")},
            {QStringLiteral("text"), text}};
}

QVariantList remarks(const WizardPreview& preview) {
    QVariantList rows;
    for (const WizardRemark& remark : preview.remarks)
        rows.append(row(remark.kind,
                        qt(remark.text) + (remark.times > 1 ? QStringLiteral(" (%1 times)").arg(remark.times)
                                                            : QString())));
    return rows;
}

QString tally(const QVariantList& remarks) {
    QStringList words;
    const auto count = [&](const char* kind, const char* symbol, const char* word) {
        int found = 0;
        for (const QVariant& row : remarks)
            found += row.toMap()[QStringLiteral("kind")].toString() == QLatin1String(kind) ? 1 : 0;
        if (found > 0)
            words.append(QString::fromUtf8(symbol) + QLatin1Char(' ') + counted(found, word));
    };
    count("error", "✖", "error");
    count("warning", "▲", "warning");
    return words.join(QStringLiteral(", "));
}

QVariantList gauges(const WizardCamera* camera) {
    QVariantList rows;
    for (std::size_t i = 0; i < 4; ++i) {
        const WizardGauge gauge = camera ? camera->gauges.singles[i] : WizardGauge{};
        rows.append(QVariantMap{
            {QStringLiteral("name"), QString::fromUtf8(gauge.name)},
            {QStringLiteral("planned"), gauge.planned},
            {QStringLiteral("symbol"), symbolOf(gauge.verdict.level)},
            {QStringLiteral("level"), wordOf(gauge.verdict.level)},
            {QStringLiteral("text"), qt(gauge.verdict.text)},
            {QStringLiteral("shutter"), qt(gauge.verdict.suggestedShutter)},
            {QStringLiteral("field"), QString::fromUtf8(gauge.shutterField)},
        });
    }
    return rows;
}

QVariantList zones(const WizardCamera* camera) {
    QVariantList cells;
    for (std::size_t i = 0; i < WizardGauges::zoneNames.size(); ++i)
        cells.append(QVariantMap{{QStringLiteral("name"), QString::fromLatin1(WizardGauges::zoneNames[i])},
                                 {QStringLiteral("reached"), camera && camera->gauges.zones[i]}});
    return cells;
}

QString coronaLevel(const WizardCamera* camera) {
    return camera ? wordOf(camera->gauges.corona.level) : QString();
}

QString coronaText(const WizardCamera* camera) {
    if (!camera)
        return {};
    const Guide::CoronaCoverage& corona = camera->gauges.corona;
    QString words =
        QStringLiteral("%1 Corona: %2 of 7 zones").arg(symbolOf(corona.level)).arg(corona.covered);
    if (corona.missing)
        words += QStringLiteral(", misses the ") + qt(*corona.missing);
    return words;
}

} // namespace zenka::ui::WizardWords
