#include "ui/wizard/WizardCell.h"

#include <QVariantMap>

#include <utility>

namespace zenka::ui {

QString WizardCell::kind() const {
    switch (field_.kind) {
    case WizardForm::Kind::check: return QStringLiteral("check");
    case WizardForm::Kind::choice: return QStringLiteral("choice");
    default: return QStringLiteral("text");
    }
}

bool WizardCell::hasOptions() const {
    return !WizardForm::options(field_, {}).empty();
}

void WizardCell::set(State state) {
    if (state_ == state)
        return;
    state_ = std::move(state);
    Q_EMIT changed();
}

QVariantList makeWizardSections(std::vector<WizardCell*>& cells, QObject* parent) {
    QVariantList sections;
    for (const WizardForm::Section section : WizardForm::sections) {
        QVariantList rows;
        QString name;
        QVariantList row;
        const auto close = [&] {
            if (!row.isEmpty())
                rows.append(QVariantMap{{QStringLiteral("name"), name}, {QStringLiteral("cells"), row}});
            row.clear();
        };
        for (const WizardForm::Field& field : WizardForm::fields()) {
            if (field.section != section)
                continue;
            if (field.row) {
                close();
                name = QString::fromUtf8(field.row);
            }
            cells.push_back(new WizardCell(field, parent));
            row.append(QVariant::fromValue<QObject*>(cells.back()));
        }
        close();
        sections.append(QVariantMap{{QStringLiteral("title"), QString::fromUtf8(WizardForm::title(section))},
                                    {QStringLiteral("rows"), rows}});
    }
    return sections;
}

} // namespace zenka::ui
