#include "services/ServiceAddress.h"
#include "support/VirtualRig.h"
#include "ui/Window.h"
#include "ui/kit/AppView.h"
#include "ui/screenshots/Scenes.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <nlohmann/json.hpp>

#include <string>

namespace zenka::screenshots {

void shootAssistant(test::VirtualRig& rig, ui::Window& window, Album& album) {
    rig.machine.settings.setText(services::serviceHostKey, "https://zenka.example");
    const auto find = [&](const char* name) {
        QObject* found = nullptr; // not in one of the sheets of before, which are still about
        for (auto* item : window.quickWindow()->findChildren<QQuickItem*>(QString::fromLatin1(name)))
            found = item->window() ? item : found;
        return found;
    };
    const auto press = [&](const char* name) {
        if (auto* button = find(name))
            QMetaObject::invokeMethod(button, "clicked");
        rig.run(0.01);
    };
    const auto tick = [&](const char* name, bool on) {
        if (auto* box = find(name)) {
            box->setProperty("checked", on);
            QMetaObject::invokeMethod(box, "toggled");
        }
    };
    const auto say = [&](const char* words) {
        if (auto* field = find("assistantInput"))
            field->setProperty("text", QString::fromUtf8(words));
        press("assistantSend");
    };
    const auto reply = [&](const std::string& text) {
        rig.http.answer(200, nlohmann::json{{"reply", text}}.dump());
        rig.run(0.01);
    };
    rig.load(example());
    const double c2 = rig.model.site().contactTHours().at("C2") * 3600;
    const std::string script = "# A tight bracket\n" + rig.frameAt(c2 + 10) + rig.frameAt(c2 + 10.2);
    album.inEveryLook([&](const std::string& look) {
        const auto shoot = [&](const char* page) { album.shoot("Assistant-" + std::string(page) + look); };
        window.app().openSheet(QStringLiteral("Assistant"));
        rig.run(0.01);
        shoot("beginning");
        say("Two frames at the second contact, please.");
        shoot("waiting");
        reply("Which body is it for, and with which lens? I would leave a second between the frames: the "
              "bodies of your rig hold that.");
        say("CAM1, 500 mm. As tight as you can.");
        reply("Here it is.\n\n```zenka\n" + script +
              "COMMAND,C2,-,30,,,,,,,,,Dim;brightnessctl set 5%\n```\n"
              "Rehearse it first.");
        shoot("script");
        press("assistantLoad");
        shoot("commands");
        press("assistantDecline");
        tick("assistantReadable", true);
        say("Mend it.");
        rig.http.answer(503, "");
        rig.run(0.01);
        shoot("failure");
        tick("assistantReadable", false);
        press("assistantNew");
        window.app().closeSheet();
    });
}

} // namespace zenka::screenshots
