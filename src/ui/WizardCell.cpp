#include "ui/WizardCell.h"

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

} // namespace zenka::ui
