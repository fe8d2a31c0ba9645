#include "ui/services/ServiceView.h"

#include "rig/RigModel.h"
#include "services/ServiceDesk.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <utility>

namespace zenka::ui {

namespace {

constexpr QLatin1String usageSheet("UsageReports");

} // namespace

ServiceView::ServiceView(services::ServiceDesk& desk, rig::RigModel& rig, AppView& app, QObject* parent)
    : QObject(parent), desk_(desk), rig_(rig), app_(app) {
    const auto told = [this](const auto&) {
        Q_EMIT changed();
        soon();
    };
    observe(this, desk.host().changed(), told);
    observe(this, desk.allowed().changed(), told);
    observe(this, desk.telemetry().example().changed(), told);
    observe(this, desk.trust().showTrustBanner().changed(), told);
    observe(this, rig.script().showWelcome().changed(), told);
    observe(this, rig.transport().activityChanged(), [this] {
        Q_EMIT changed();
        soon();
    });
    connect(&app_, &AppView::promptChanged, this, &ServiceView::soon);
    connect(&app_, &AppView::sheetChanged, this, &ServiceView::sheetChanged);
}

// --- the question

/// Not in the middle of a tick: a sheet takes its time to be made.
void ServiceView::soon() {
    QMetaObject::invokeMethod(
        this, [this] { look(); }, Qt::QueuedConnection);
}

void ServiceView::look() {
    const bool free = app_.sheet().isEmpty() && app_.prompt().isEmpty() && !rig_.transport().runActive() &&
                      !rig_.script().showWelcome().get() && !rig_.cadence().dropExplainer().get() &&
                      rig_.analyzer().state()->step == rig::AnalyzerState::Step::idle;
    // The example is there once the rig is up.
    if (!free || !desk_.mayAsk() || example().isEmpty())
        return;
    asking_ = true;
    app_.openSheet(usageSheet);
}

void ServiceView::sheetChanged() {
    if (app_.holds(usageSheet))
        return;
    if (std::exchange(asking_, false))
        desk_.allow(false); // closed without a yes; Settings has it still
    soon();
}

void ServiceView::answer(bool allowed) {
    asking_ = false;
    desk_.allow(allowed);
    if (app_.sheet() == usageSheet)
        app_.closeSheet();
}

// --- what it shows

QString ServiceView::address() const {
    return qt(desk_.address());
}

void ServiceView::setAddress(const QString& address) {
    desk_.setAddress(address.toStdString());
    Q_EMIT changed();
}

QString ServiceView::host() const {
    return qt(desk_.host().get());
}

bool ServiceView::allowed() const {
    return desk_.allowed().get().value_or(false);
}

void ServiceView::setAllowed(bool allowed) {
    desk_.allow(allowed);
}

QString ServiceView::example() const {
    return qt(desk_.telemetry().example().get());
}

void ServiceView::setEmail(const QString& email) {
    if (email_ == email)
        return;
    email_ = email;
    Q_EMIT emailChanged();
}

bool ServiceView::asksForTrust() const {
    return desk_.trust().showTrustBanner().get() && !rig_.transport().runActive() &&
           !rig_.script().showWelcome().get();
}

void ServiceView::rate(int score) {
    desk_.trust().submitTrust(score);
}

void ServiceView::dismissTrust() {
    desk_.trust().dismissTrustBanner();
}

} // namespace zenka::ui
