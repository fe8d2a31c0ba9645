#pragma once

#include "services/GlanceDesk.h"
#include "services/ServiceDesk.h"
#include "support/ToldNames.h"
#include "support/ToldPages.h"
#include "support/VirtualRig.h"
#include "ui/Window.h"

#include <QImage>
#include <QPointF>
#include <QQuickItem>
#include <QQuickWindow>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace zenka::test {

/// The whole window on a rig in virtual time, driven by the events that a desktop sends. A warning of Qt's
/// or of the QML engine's while it is open fails the test.
class DrivenWindow {
public:
    explicit DrivenWindow(VirtualRig& driven);
    ~DrivenWindow();

    /// Shows it and, as the program does, starts the rig.
    void open();
    /// Puts away what greets the user of a first start.
    void dismissGreetings();

    ui::Window& operator*() const { return *window_; }
    ui::Window* operator->() const { return window_.get(); }
    QQuickWindow& screen() const { return *window_->quickWindow(); }

    services::ServiceDesk& services() { return services_; }
    ToldPages& pages() { return pages_; }

    /// Lets everything come to rest that needs no clock.
    static void settle();

    void key(Qt::Key code, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const;
    void type(const QString& text) const;
    void click(const QPointF& at, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const;
    /// Clicks the middle of an item; fails the test where it cannot be seen.
    void click(const QQuickItem* item, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const;
    void press(const QPointF& at) const;
    void moveTo(const QPointF& at) const;
    void release(const QPointF& at) const;
    /// Turns the wheel by notches, positive away from the user.
    void wheel(const QPointF& at, int notches) const;

    using Wanted = std::function<bool(const QQuickItem&)>;
    /// The topmost that can be seen, popups included. Null where there is none.
    QQuickItem* find(const Wanted& wanted) const;
    QQuickItem* named(const char* objectName) const;
    /// A button or menu line by its words.
    QQuickItem* button(const char* text) const;
    /// Whether the words stand anywhere, as a part of a text.
    bool says(const QString& words) const;

    QQuickItem* focused() const { return screen().activeFocusItem(); }
    QImage picture() const;

    /// Where an item is in the window.
    static QRectF placeOf(const QQuickItem* item) {
        return item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
    }

private:
    ToldNames names_;
    services::ServiceDesk services_;
    ToldPages pages_;
    services::GlanceDesk glance_;
    std::unique_ptr<ui::Window> window_;
};

/// What an item is called to those who cannot see it, else its text, else its type.
QString nameOf(const QQuickItem* item);

/// The most green or blue in a picture, and where.
struct ColdestPixel {
    int light = 0;
    QPoint at;
};
ColdestPixel coldestPixel(const QImage& picture);

} // namespace zenka::test
