#include "DrivenWindow.h"
#include "services/ServiceAddress.h"
#include "support/ImageFiles.h"
#include "support/TempFolder.h"
#include "ui/Commands.h"
#include "ui/kit/AppView.h"

#include <QUrl>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <optional>

using namespace zenka;
using testing::HasSubstr;
using testing::StartsWith;
using Json = nlohmann::json;

namespace {

/// What goes to the service, and the questions about it.
struct WindowServices : testing::Test {
    test::VirtualRig rig;
    std::optional<test::DrivenWindow> window;

    /// An unset answer is to be asked for.
    void open(std::optional<bool> allowed = false, const char* host = "https://zenka.example") {
        rig.machine.settings.setText(services::serviceHostKey, host);
        if (allowed)
            rig.machine.settings.setFlag(services::telemetryAllowedKey, *allowed);
        window.emplace(rig);
        window->open();
    }
    void openQuietly(std::optional<bool> allowed = false) {
        open(allowed);
        window->dismissGreetings();
        run();
    }
    void run(double seconds = 0.1) {
        rig.run(seconds);
        window->settle();
    }
    std::string sheet() const { return (*window)->app().sheet().toStdString(); }
    std::string focus() const {
        return window->focused() ? window->focused()->objectName().toStdString() : "nothing";
    }
    std::string textOf(const char* name) const {
        const QQuickItem* item = window->named(name);
        return item ? item->property("text").toString().toStdString() : "nothing";
    }
    bool tabTo(const char* objectName) const {
        for (int i = 0; i < 80; ++i) {
            if (focus() == objectName)
                return true;
            window->key(Qt::Key_Tab);
        }
        return false;
    }
    void enter() {
        window->key(Qt::Key_Return);
        run();
    }
    void trigger(const char* command) {
        (*window)->commands().trigger(QString::fromLatin1(command));
        run();
    }
    Json sentBody(const char* path) {
        EXPECT_EQ(rig.http.waiting.size(), 1U);
        if (rig.http.waiting.size() != 1)
            return {};
        EXPECT_EQ(rig.http.waiting[0].request.url, std::string("https://zenka.example") + path);
        return Json::parse(rig.http.waiting[0].request.body);
    }
    void fail() {
        rig.http.fail("the time ran out");
        run();
    }
    void take() {
        rig.http.answer(200, "");
        run();
    }
};

constexpr char couldNot[] = "✖ Could not be sent: the time ran out. Try again when there is a network.";

} // namespace

TEST_F(WindowServices, usageReportsAreAskedForOnceBehindTheGreetingsAndAnsweredByKeyAlone) {
    rig.machine.settings.remove("eclipse.scriptText"); // so that there is a welcome
    open(std::nullopt);
    run(1);
    EXPECT_EQ(sheet(), "Welcome");
    (*window)->app().closeSheet();
    run(1);
    EXPECT_EQ(sheet(), "") << "there is a prompt";
    window->dismissGreetings();
    run();
    ASSERT_EQ(sheet(), "UsageReports");
    EXPECT_THAT(textOf("usageQuestion"), HasSubstr("zenka.example"));
    EXPECT_EQ(textOf("usageExample"), window->services().telemetry().example().get());
    EXPECT_EQ(focus(), "usageExample") << "a stray Enter answers nothing";
    window->key(Qt::Key_Return);
    EXPECT_EQ(sheet(), "UsageReports");
    const QQuickItem* yes = window->named("usageYes");
    const QQuickItem* no = window->named("usageNo");
    ASSERT_TRUE(yes && no);
    EXPECT_EQ(yes->width(), no->width());
    EXPECT_EQ(yes->property("strong"), no->property("strong"));
    ASSERT_TRUE(tabTo("usagePage"));
    enter();
    EXPECT_EQ(sheet(), "Guide");
    window->key(Qt::Key_Escape);
    EXPECT_EQ(sheet(), "UsageReports") << "to read on is no answer";
    EXPECT_TRUE(rig.http.waiting.empty());
    ASSERT_TRUE(tabTo("usageYes"));
    enter();
    EXPECT_EQ(sheet(), "");
    EXPECT_EQ(rig.machine.settings.flag(services::telemetryAllowedKey), true);
    run(5);
    EXPECT_EQ(sheet(), "");
}

TEST_F(WindowServices, closingTheQuestionIsANoAndSettingsChangesIt) {
    openQuietly(std::nullopt);
    ASSERT_EQ(sheet(), "UsageReports");
    window->key(Qt::Key_Escape);
    run(5);
    EXPECT_EQ(sheet(), "");
    EXPECT_EQ(rig.machine.settings.flag(services::telemetryAllowedKey), false);

    trigger("openSettings");
    ASSERT_TRUE(tabTo("usageAllowed"));
    enter();
    window->services().telemetry().track("test", Json::object());
    run(0.1);
    EXPECT_EQ(rig.files.count("telemetry-spool.jsonl"), 1);
    window->key(Qt::Key_Space);
    run();
    EXPECT_EQ(rig.files.count("telemetry-spool.jsonl"), 0) << "what waited is gone";
    EXPECT_TRUE(rig.http.waiting.empty());
    EXPECT_EQ(rig.machine.settings.flag(services::telemetryAllowedKey), false);
}

TEST_F(WindowServices, nothingIsAskedInARunOrWithoutAService) {
    open(std::nullopt, "");
    window->dismissGreetings();
    run(1);
    EXPECT_EQ(sheet(), "");
    EXPECT_EQ(window->named("trustBar"), nullptr);
    rig.load(rig.frameAt(rig.model.transport().clock() + 100));
    rig.model.transport().togglePlay();
    window->services().setAddress("https://zenka.example");
    run(1);
    ASSERT_TRUE(rig.model.transport().runActive());
    EXPECT_EQ(sheet(), "");
    EXPECT_EQ(window->named("trustBar"), nullptr);
    rig.model.transport().togglePlay();
    run(1);
    EXPECT_EQ(sheet(), "UsageReports");
    window->key(Qt::Key_Escape);
    EXPECT_NE(window->named("trustBar"), nullptr);
}

TEST_F(WindowServices, trustIsRatedOrPutOffInOneLine) {
    openQuietly();
    ASSERT_NE(window->named("trustBar"), nullptr);
    window->screen().resize(960, 440);
    window->settle();
    window->click(window->named("trust4"));
    EXPECT_EQ(sentBody("/api/trust")["score"], 4);
    EXPECT_EQ(window->named("trustBar"), nullptr);
    EXPECT_TRUE(rig.logged("Trust rating 4/5 for v9.9. Thank you."));
    rig.machine.settings.remove(services::trustRatedVersionKey);
    rig.machine.settings.remove(services::trustRatedAtKey);
    window->services().trust().evaluateTrustBanner();
    ASSERT_TRUE(tabTo("trustLater"));
    enter();
    EXPECT_EQ(window->named("trustBar"), nullptr);
    EXPECT_EQ(rig.http.waiting.size(), 1U);
}

TEST_F(WindowServices, aMessageIsNeverLostUntilItHasArrived) {
    openQuietly();
    trigger("reportBug");
    ASSERT_EQ(sheet(), "Feedback");
    EXPECT_EQ(focus(), "feedbackMessage");
    EXPECT_THAT(textOf("feedbackWords"), StartsWith("Goes to zenka.example"));
    ASSERT_TRUE(tabTo("sendFeedback"));
    enter();
    EXPECT_THAT(textOf("feedbackWords"), StartsWith("✖ There is no message yet."));
    EXPECT_TRUE(rig.http.waiting.empty());
    ASSERT_TRUE(tabTo("feedbackMessage"));
    window->type(QStringLiteral("It stopped"));
    window->key(Qt::Key_Return);
    window->type(QStringLiteral("at C2"));
    window->key(Qt::Key_Escape);
    ASSERT_EQ(sheet(), "");
    trigger("reportBug");
    EXPECT_EQ(textOf("feedbackMessage"), "It stopped\nat C2");
    window->click(window->named("kind1"));
    ASSERT_TRUE(tabTo("feedbackEmail"));
    window->type(QStringLiteral("a@b.example"));
    ASSERT_TRUE(tabTo("withFacts"));
    enter();
    ASSERT_TRUE(tabTo("sendFeedback"));
    enter();
    EXPECT_EQ(textOf("feedbackWords"), "Sending…");
    const Json first = sentBody("/api/contact");
    EXPECT_EQ(first["message"], "It stopped\nat C2");
    EXPECT_EQ(first["kind"], "wish");
    EXPECT_EQ(first["email"], "a@b.example");
    EXPECT_EQ(first["facts"], textOf("feedbackFacts"));
    fail();
    EXPECT_EQ(textOf("feedbackWords"), couldNot);
    EXPECT_EQ(textOf("feedbackMessage"), "It stopped\nat C2");
    ASSERT_TRUE(tabTo("withFacts"));
    enter();
    ASSERT_TRUE(tabTo("sendFeedback"));
    enter();
    EXPECT_FALSE(sentBody("/api/contact").contains("facts"));
    take();
    EXPECT_EQ(textOf("feedbackWords"), "The message was sent. Thank you.");
    EXPECT_EQ(textOf("feedbackMessage"), "");
    window->key(Qt::Key_Escape);

    window->services().setAddress("");
    trigger("reportBug");
    EXPECT_EQ(sheet(), "ReportBug") << "there is nobody to send it to";
}

TEST_F(WindowServices, theAddressIsTakenWhenItIsWholeAndNotLetterByLetter) {
    openQuietly();
    window->services().setAddress("");
    trigger("openSettings");
    const auto field = [](const QQuickItem& item) {
        return item.inherits("QQuickTextField") &&
               test::nameOf(&item) == QLatin1String("Address of the service");
    };
    for (int i = 0; i < 40 && !(window->focused() && field(*window->focused())); ++i)
        window->key(Qt::Key_Tab);
    ASSERT_TRUE(window->focused() && field(*window->focused()));
    window->type(QStringLiteral("https://a.example"));
    EXPECT_EQ(window->services().host().get(), "");
    window->key(Qt::Key_Escape);
    EXPECT_EQ(sheet(), "");
    EXPECT_EQ(window->services().host().get(), "a.example") << "closing the sheet loses nothing";
}

TEST_F(WindowServices, aCameraProfileGoesWithEmailAndLens) {
    openQuietly();
    const auto body = rig.addBody("CAM1");
    body->choices = {.shutter = {"1/500"}, .iso = {"100"}, .aperture = {"8"}};
    trigger("cameraProfiler");
    EXPECT_EQ(window->named("sendProfile"), nullptr) << "nothing was read";
    rig.model.cameraProfiler().runCameraProfile(body->id());
    run(1);
    EXPECT_TRUE(window->says(QStringLiteral("would go to zenka.example")));
    ASSERT_TRUE(tabTo("profilePostLens"));
    window->type(QStringLiteral("400 mm"));
    ASSERT_TRUE(tabTo("sendProfile"));
    enter();
    const Json sent = sentBody("/api/camera-profile");
    EXPECT_EQ(sent["serial"], "SN-id-CAM1");
    EXPECT_EQ(sent["lens"], "400 mm");
    EXPECT_EQ(sent["shutter"][0]["shutter_fraction"], "1/500");
    fail();
    EXPECT_EQ(textOf("profilePostWords"), couldNot);
    EXPECT_EQ(textOf("profilePostLens"), "400 mm");
    ASSERT_TRUE(tabTo("sendProfile"));
    enter();
    take();
    EXPECT_EQ(textOf("profilePostWords"), "The profile was sent. Thank you.");
}

TEST_F(WindowServices, aReportThatCouldNotBeSentComesBackWithItsNote) {
    openQuietly();
    (*window)->setOpenUrl([](const QUrl&) {});
    const test::TempFolder disk;
    test::writeFile(disk.path() / "CARD" / "DCIM" / "100" / "1.NEF", "image");
    rig.images.fields["1.NEF"] = {.dateTimeOriginal = "2026:08:12 20:00:00", .model = "NIKON Z 8"};
    rig.load(rig.frameAt(rig.model.transport().clock() + 100));
    rig.model.analyzer().analyzeFolder(disk.path() / "CARD");
    run(1);
    ASSERT_EQ(sheet(), "Analyzer");
    EXPECT_THAT(textOf("nobodyToSendTo"), HasSubstr("to zenka.example"));
    ASSERT_TRUE(tabTo("note"));
    window->type(QStringLiteral("new cable"));
    ASSERT_TRUE(tabTo("sendReport"));
    enter();
    EXPECT_EQ(sheet(), "");
    EXPECT_EQ(sentBody("/api/run-report")["note"], "new cable");
    fail();
    ASSERT_EQ(sheet(), "Analyzer");
    EXPECT_EQ(textOf("sendFault"), couldNot);
    EXPECT_EQ(textOf("note"), "new cable");
    EXPECT_TRUE(rig.logged("the report is kept on this computer. Could not be sent"));
    ASSERT_TRUE(tabTo("reportEmail"));
    window->type(QStringLiteral("a@b.example"));
    ASSERT_TRUE(tabTo("sendReport"));
    enter();
    const Json sent = sentBody("/api/run-report");
    EXPECT_EQ(sent["email"], "a@b.example");
    EXPECT_THAT(sent["html"].get<std::string>(), HasSubstr("<html"));
    take();
    EXPECT_TRUE(rig.logged("Analyzer: report emailed to the team with your note"));
    EXPECT_EQ(sheet(), "");
}
