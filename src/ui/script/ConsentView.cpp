#include "ui/script/ConsentView.h"

#include "rig/RigModel.h"
#include "ui/kit/AppView.h"
#include "ui/kit/CommandText.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

namespace zenka::ui {

ConsentView::ConsentView(rig::RigModel& rig, AppView& app, QObject* parent)
    : QObject(parent), rig_(rig), app_(app) {
    observe(this, rig.consent().waiting().changed(), [this](const auto&) { Q_EMIT changed(); });
    observe(this, rig.consent().asked(), [this] { app_.openPage(QStringLiteral("Consent")); });
}

int ConsentView::count() const {
    return static_cast<int>(rig_.consent().waiting()->size());
}

bool ConsentView::canAllow() const {
    return count() > 0 && script::canBeRead(rig_.consent().waiting().get());
}

QString ConsentView::question() const {
    if (count() == 0)
        return QStringLiteral("No command of the script waits for your leave.");
    if (!canAllow())
        return QStringLiteral("This script came with %1 for your computer, more than one can look through. "
                              "They will not be run; all else of the script will.")
            .arg(counted(count(), "command"));
    return QStringLiteral(
               "This script came with %1 for your computer. Whoever writes such a line can do with "
               "this computer what you can. Allow only what you understand; without your leave "
               "the frames and cues go their way, and the commands are left out.")
        .arg(counted(count(), "command"));
}

QString ConsentView::commands() const {
    return canAllow() ? commandText(rig_.consent().waiting().get()) : QString();
}

void ConsentView::allow() {
    if (canAllow())
        rig_.consent().allow();
    app_.closeSheet();
}

} // namespace zenka::ui
