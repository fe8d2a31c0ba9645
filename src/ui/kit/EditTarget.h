#pragma once

#include <QObject>
#include <QPointer>

class QQuickItem;
class QQuickWindow;

namespace zenka::ui {

/// The text field that the Edit menu works on: the one that had the keyboard last, for an open menu has it
/// itself.
class EditTarget : public QObject {
    Q_OBJECT

public:
    explicit EditTarget(QObject* parent) : QObject(parent) {}

    void watch(QQuickWindow& window);

    bool has(const char* operation) const;
    /// Calls "undo", "redo", "cut", "copy", "paste" or "selectAll" of the field.
    void call(const char* operation);

private:
    QPointer<QQuickItem> field_;
};

} // namespace zenka::ui
