#include "DrivenWindow.h"

#include "ui/kit/AppView.h"

#include <QCoreApplication>
#include <QQmlContext>
#include <QQmlProperty>
#include <QTest>
#include <QWheelEvent>
#include <gtest/gtest.h>

#include <algorithm>

namespace zenka::test {

namespace {

QStringList warnings;

void noteWarning(QtMsgType type, const QMessageLogContext&, const QString& message) {
    // The platform without a screen has no window manager, and each test makes another window of one process.
    const bool ofTheTests = message.contains(QLatin1String("propagateSizeHints")) ||
                            message.contains(QLatin1String("QQuickStyle::setStyle() must be called before"));
    if (type != QtDebugMsg && type != QtInfoMsg && !ofTheTests)
        warnings.append(message);
}

void visit(QQuickItem* item, const std::function<void(QQuickItem*)>& visitor) {
    if (!item->isVisible())
        return;
    visitor(item);
    for (QQuickItem* child : item->childItems())
        visit(child, visitor);
}

} // namespace

DrivenWindow::DrivenWindow(VirtualRig& driven)
    : services_(driven.machine.all, names_, driven.model, "9.9"),
      glance_(driven.machine.all, pages_, driven.model) {
    warnings.clear();
    qInstallMessageHandler(noteWarning);
    window_ = std::make_unique<ui::Window>(driven.model, driven.machine.all, services_, glance_,
                                           QStringLiteral("9.9"));
}

DrivenWindow::~DrivenWindow() {
    window_.reset();
    qInstallMessageHandler(nullptr);
    EXPECT_TRUE(warnings.isEmpty()) << warnings.join(QLatin1Char('\n')).toStdString();
}

void DrivenWindow::open() {
    ASSERT_TRUE(window_->show());
    screen().resize(1380, 860); // though the screen of the tests is smaller
    settle();
}

void DrivenWindow::dismissGreetings() {
    window_->app().closeSheet();
    if (window_->app().prompt() == QLatin1String("eclipseDay"))
        window_->app().declinePrompt();
    settle();
}

void DrivenWindow::settle() {
    for (int i = 0; i < 10; ++i)
        QCoreApplication::processEvents();
}

void DrivenWindow::key(Qt::Key code, Qt::KeyboardModifiers modifiers) const {
    QTest::keyClick(&screen(), code, modifiers);
    settle();
}

void DrivenWindow::type(const QString& text) const {
    for (const QChar letter : text)
        QTest::keyClick(&screen(), letter.toLatin1());
    settle();
}

void DrivenWindow::click(const QPointF& at, Qt::KeyboardModifiers modifiers) const {
    QTest::mouseClick(&screen(), Qt::LeftButton, modifiers, at.toPoint());
    settle();
}

void DrivenWindow::click(const QQuickItem* item, Qt::KeyboardModifiers modifiers) const {
    ASSERT_NE(item, nullptr);
    const QRectF place = placeOf(item);
    EXPECT_TRUE(QRectF(QPointF(), screen().size()).contains(place.center())) << nameOf(item).toStdString();
    click(place.center(), modifiers);
}

void DrivenWindow::press(const QPointF& at) const {
    QTest::mousePress(&screen(), Qt::LeftButton, Qt::NoModifier, at.toPoint());
    settle();
}

void DrivenWindow::moveTo(const QPointF& at) const {
    QTest::mouseMove(&screen(), at.toPoint());
    settle();
}

void DrivenWindow::release(const QPointF& at) const {
    QTest::mouseRelease(&screen(), Qt::LeftButton, Qt::NoModifier, at.toPoint());
    settle();
}

void DrivenWindow::wheel(const QPointF& at, int notches) const {
    QWheelEvent event(at, screen().mapToGlobal(at), QPoint(), QPoint(0, 120 * notches), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&screen(), &event);
    settle();
}

QQuickItem* DrivenWindow::find(const Wanted& wanted) const {
    QTest::qWait(30); // a frame, with which layouts and lists come to rest
    QQuickItem* found = nullptr;
    visit(screen().contentItem(), [&](QQuickItem* item) {
        if (wanted(*item))
            found = item;
    });
    return found;
}

QQuickItem* DrivenWindow::named(const char* objectName) const {
    const QString name = QString::fromLatin1(objectName);
    return find([&](const QQuickItem& item) { return item.objectName() == name; });
}

QQuickItem* DrivenWindow::button(const char* text) const {
    const QString words = QString::fromUtf8(text);
    return find([&](const QQuickItem& item) {
        return item.inherits("QQuickAbstractButton") && item.property("text").toString() == words;
    });
}

bool DrivenWindow::says(const QString& words) const {
    return find([&](const QQuickItem& item) {
               return item.inherits("QQuickText") && item.property("text").toString().contains(words);
           }) != nullptr;
}

QImage DrivenWindow::picture() const {
    return screen().grabWindow().convertToFormat(QImage::Format_RGB32);
}

QString nameOf(const QQuickItem* item) {
    if (!item)
        return QStringLiteral("nothing");
    if (QQmlContext* context = qmlContext(item)) {
        const QQmlProperty name(const_cast<QQuickItem*>(item), QStringLiteral("Accessible.name"), context);
        if (const QString words = name.read().toString(); !words.isEmpty())
            return words;
    }
    for (const char* property : {"title", "text", "objectName"}) {
        if (const QString words = item->property(property).toString(); !words.isEmpty())
            return words;
    }
    return QString::fromLatin1(item->metaObject()->className());
}

ColdestPixel coldestPixel(const QImage& picture) {
    ColdestPixel coldest;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            if (const int light = std::max(qGreen(pixel), qBlue(pixel)); light > coldest.light)
                coldest = {light, QPoint(x, y)};
        }
    }
    return coldest;
}

} // namespace zenka::test
