#include "ui/services/GlanceView.h"

#include "services/GlanceDesk.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <algorithm>

namespace zenka::ui {

using Reach = services::GlanceDesk::Reach;

GlanceView::GlanceView(services::GlanceDesk& desk, QObject* parent) : QObject(parent), desk_(desk) {
    const auto told = [this](const auto&) { Q_EMIT changed(); };
    observe(this, desk.reach().changed(), told);
    observe(this, desk.addresses().changed(), told);
    observe(this, desk.fault().changed(), told);
}

int GlanceView::reach() const {
    return static_cast<int>(desk_.reach().get());
}

void GlanceView::setReach(int reach) {
    desk_.setReach(static_cast<Reach>(std::clamp(reach, 0, 2)));
}

QStringList GlanceView::addresses() const {
    QStringList list;
    for (const std::string& address : desk_.addresses().get())
        list.append(qt(address));
    return list;
}

QString GlanceView::fault() const {
    return qt(desk_.fault().get());
}

QString GlanceView::words() const {
    switch (desk_.reach().get()) {
    case Reach::off:
        return QStringLiteral(
            "A page for a phone on the tripod: countdown, bodies, drops and log, anew every two "
            "seconds. It can be looked at, and can change nothing.");
    case Reach::thisComputer: return QStringLiteral("Only a browser on this computer sees the page.");
    case Reach::localNetwork:
        return QStringLiteral(
            "Whoever is in your local network and has the address sees the page. It goes over "
            "the network as it is, unencrypted; it tells neither your site nor your script.");
    }
    return {};
}

void GlanceView::renewAddress() {
    desk_.renewAddress();
}

} // namespace zenka::ui
