#pragma once

#include "ui/wizard/WizardPreview.h"

#include <QString>
#include <QVariantList>

/// The wizard's preview in the words and rows that its sheet shows.
namespace zenka::ui::WizardWords {

/// The site and its totality.
QString site(const WizardSite& site);
/// "505 frames on 1 camera, 6 cues"
QString summary(const WizardPreview& preview);
/// Maps of name, frames, used.
QVariantList cameras(const WizardPreview& preview, const WizardSite& site);

/// One remark: a map of symbol, kind ("error", "warning", "note") and text.
QVariantMap row(WizardRemark::Kind kind, const QString& text);
QVariantList remarks(const WizardPreview& preview);
/// "✖ 1 error, ▲ 3 warnings" of such rows, empty for neither.
QString tally(const QVariantList& remarks);

/// Four maps of name, planned, symbol, level ("good", "warning", "bad"), text, shutter, field; seven of name
/// and reached. The same number without a camera.
QVariantList gauges(const WizardCamera* camera);
QVariantList zones(const WizardCamera* camera);
QString coronaLevel(const WizardCamera* camera);
QString coronaText(const WizardCamera* camera);

} // namespace zenka::ui::WizardWords
