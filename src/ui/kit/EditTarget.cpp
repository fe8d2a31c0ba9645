#include "ui/kit/EditTarget.h"

#include <QMetaObject>
#include <QQuickItem>
#include <QQuickWindow>

namespace zenka::ui {

namespace {

/// All text fields of the toolkit offer this; nothing else does.
bool isTextField(const QQuickItem* item) {
    return item && item->metaObject()->indexOfMethod("selectAll()") >= 0;
}

} // namespace

void EditTarget::watch(QQuickWindow& window) {
    connect(&window, &QQuickWindow::activeFocusItemChanged, this, [this, &window] {
        if (QQuickItem* item = window.activeFocusItem(); isTextField(item))
            field_ = item;
    });
}

bool EditTarget::has(const char* operation) const {
    if (!field_ || !field_->isVisible() || !field_->isEnabled())
        return false;
    QByteArray can = QByteArray("can") + operation; // canUndo, canRedo, canPaste
    can.replace(3, 1, can.mid(3, 1).toUpper());
    const QVariant possible = field_->property(can.constData());
    if (possible.isValid())
        return possible.toBool();
    return QLatin1String(operation) == QLatin1String("selectAll") ||
           !field_->property("selectedText").toString().isEmpty();
}

void EditTarget::call(const char* operation) {
    if (!has(operation))
        return;
    QMetaObject::invokeMethod(field_, operation);
    field_->forceActiveFocus();
}

} // namespace zenka::ui
