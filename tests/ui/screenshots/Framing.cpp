#include "support/VirtualRig.h"
#include "ui/Window.h"
#include "ui/kit/AppView.h"
#include "ui/screenshots/Scenes.h"

#include <QQuickItem>
#include <QRegularExpression>

#include <string>

namespace zenka::screenshots {

void shootFraming(test::VirtualRig& rig, ui::Window& window, Album& album) {
    rig.load(example());
    album.inEveryLook([&](const std::string& look) {
        const auto shoot = [&](const char* page) { album.shoot("Framing-" + std::string(page) + look); };
        window.app().openSheet(QStringLiteral("Framing"));
        Album::settle();
        const QQuickItem* picture = itemNamed(window, "framingPicture");
        auto* framing = picture->property("view").value<QObject*>();
        const auto type = [framing](const char* field, const char* text) {
            QMetaObject::invokeMethod(framing, "type", Q_ARG(QString, QString::fromLatin1(field)),
                                      Q_ARG(QString, QString::fromLatin1(text)));
        };
        const auto names = framing->property("bodies").toStringList();
        framing->setProperty("body", names.indexOf(QRegularExpression(QStringLiteral("^CAM1,.*"))));
        type("focal", "800");
        shoot("bursts");
        framing->setProperty("sensor", 1);
        type("focal", "2000");
        type("rotation", "60");
        type("ownWidth", "abc");
        QMetaObject::invokeMethod(framing, "check");
        shoot("leaving");
        type("ownWidth", "36");
        type("focal", "800");
        type("rotation", "0");
        framing->setProperty("sensor", 0);
        framing->setProperty("body", static_cast<int>(names.size()) - 1);
        framing->setProperty("moment", 0);
        shoot("plan");
        framing->setProperty("moment", 2);
        window.app().closeSheet();
    });
}

} // namespace zenka::screenshots
