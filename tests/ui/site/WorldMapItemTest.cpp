#include "ui/site/WorldMapItem.h"

#include "support/VirtualRig.h"

#include <QCoreApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QQuickWindow>
#include <QWheelEvent>
#include <gtest/gtest.h>

#include <cmath>

namespace zenka::ui {
namespace {

class WorldMapItemTest : public testing::Test {
protected:
    WorldMapItemTest() : theme(rig.machine.all.settings, nullptr), view(rig.model, rig.machine.all, nullptr) {
        window.resize(1300, 600);
        map.setParentItem(window.contentItem());
        map.setView(&view);
        map.setColors(&theme);
        map.setSize({1300, 600});
        view.open();
        rig.run(0.1);
    }
    void mouse(QEvent::Type type, QPointF at) {
        const auto buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, at, button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(&window, &event);
    }
    void key(int code) {
        QKeyEvent event(QEvent::KeyPress, code, Qt::NoModifier);
        QCoreApplication::sendEvent(&map, &event);
    }

    test::VirtualRig rig;
    Theme theme;
    LocationView view;
    QQuickWindow window;
    WorldMapItem map;
};

TEST_F(WorldMapItemTest, aClickTakesThePointAndADragMovesTheMap) {
    const QPointF at(400, 200);
    const geo::GeoPoint place = map.projection().place(at);
    mouse(QEvent::MouseButtonPress, at);
    mouse(QEvent::MouseMove, at + QPointF(120, 60));
    mouse(QEvent::MouseButtonRelease, at + QPointF(120, 60));
    EXPECT_FALSE(view.edited());
    EXPECT_NEAR(map.projection().place(at + QPointF(120, 60)).lon, place.lon, 1e-9);

    mouse(QEvent::MouseButtonPress, at);
    mouse(QEvent::MouseButtonRelease, at);
    EXPECT_NEAR(view.draftPoint().lat, map.projection().place(at).lat, map.projection().degreesPerPixel());
    EXPECT_NEAR(view.draftPoint().lon, map.projection().place(at).lon,
                2 * map.projection().degreesPerPixel());
}

TEST_F(WorldMapItemTest, theKeyboardMovesTheCrossHairAndTakesItsPoint) {
    for (const int code : {Qt::Key_Right, Qt::Key_Up, Qt::Key_Plus, Qt::Key_Right, Qt::Key_Return})
        key(code);
    const geo::GeoPoint centre = map.projection().centre();
    EXPECT_GT(centre.lon, -0.88);
    EXPECT_GT(centre.lat, 41.65);
    EXPECT_NEAR(view.draftPoint().lat, centre.lat, map.projection().degreesPerPixel());
    EXPECT_NEAR(view.draftPoint().lon, centre.lon, 2 * map.projection().degreesPerPixel());
}

TEST_F(WorldMapItemTest, escapeIsLeftToTheSheet) {
    QKeyEvent event(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    event.accept();
    QCoreApplication::sendEvent(&map, &event);
    EXPECT_FALSE(event.isAccepted());
}

TEST_F(WorldMapItemTest, nightPaintsInRedAlone) {
    theme.setKind(Theme::Kind::night);
    QImage image(1300, 600, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    map.paint(&painter);
    painter.end();
    int lit = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            ASSERT_EQ(qGreen(pixel) + qBlue(pixel), 0) << x << ", " << y;
            lit += qRed(pixel) > 60;
        }
    }
    EXPECT_GT(lit, 5000) << "path and coasts are to be seen";
}

} // namespace
} // namespace zenka::ui
