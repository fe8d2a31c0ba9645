#include "ui/services/UpdatesView.h"

#include "services/UpdateCheck.h"
#include "ui/kit/Observe.h"

namespace zenka::ui {

UpdatesView::UpdatesView(const ports::Ports& ports, const QString& version, QObject* parent)
    : QObject(parent), check_(std::make_unique<services::UpdateCheck>(ports, version.toStdString())) {
    observe(this, check_->words().changed(), [this](const auto&) { Q_EMIT changed(); });
    observe(this, check_->asking().changed(), [this](bool) { Q_EMIT changed(); });
}

UpdatesView::~UpdatesView() = default;

QString UpdatesView::words() const {
    return QString::fromStdString(check_->words().get());
}

bool UpdatesView::asking() const {
    return check_->asking().get();
}

QString UpdatesView::address() const {
    return QString::fromStdString(check_->address());
}

void UpdatesView::setAddress(const QString& address) {
    check_->setAddress(address.toStdString());
    Q_EMIT changed();
}

void UpdatesView::check() {
    check_->check();
}

} // namespace zenka::ui
