#include "DrivenWindow.h"
#include "rig/transfer/RigFile.h"
#include "ui/Commands.h"
#include "ui/kit/AppView.h"
#include "ui/run/RigTransferView.h"

#include <QProcess>
#include <QQmlContext>
#include <QQmlEngine>
#include <gtest/gtest.h>

#include <algorithm>

using namespace zenka;

namespace {

struct WindowRigTransfer : testing::Test {
    test::VirtualRig rig;
    test::DrivenWindow window{rig};
    const QUrl file = QUrl::fromLocalFile(QStringLiteral("/home/a.zenka-rig"));

    void SetUp() override {
        window.open();
        window.dismissGreetings();
        window->setOpenUrl([this](const QUrl& url) { opened.append(url); });
    }
    ui::RigTransferView& view() {
        return *qvariant_cast<ui::RigTransferView*>(
            QQmlEngine::contextForObject(&window.screen())->contextProperty(QStringLiteral("transfer")));
    }
    void pass() {
        rig.run(0.1);
        window.settle();
    }
    bool canImport() { return window->commands().isEnabled(QStringLiteral("importRig")); }

    /// The words of a PDF as another program reads them.
    static std::string textOf(const std::string& pdf) {
        QProcess reader;
        reader.start(QStringLiteral("pdftotext"), {QStringLiteral("-"), QStringLiteral("-")});
        reader.write(pdf.data(), static_cast<qint64>(pdf.size()));
        reader.closeWriteChannel();
        EXPECT_TRUE(reader.waitForFinished());
        return reader.readAllStandardOutput().toStdString();
    }

    QList<QUrl> opened;
};

TEST_F(WindowRigTransfer, aRigIsShownBeforeItIsTakenAndByKeyOnlyWhatIsTickedIsTaken) {
    rig.model.sites().addSite("Hill", 42, -3, 900, "Europe/Madrid");
    window->commands().trigger(QStringLiteral("exportRig"));
    window.settle();
    EXPECT_TRUE(window.says(QStringLiteral("4 saved sites")));
    view().exportTo(file);
    pass();
    EXPECT_TRUE(window.says(QStringLiteral("Exported to \"a.zenka-rig\"")));
    window.key(Qt::Key_Escape);
    rig::RigContents carried = *rig::rigFrom(rig.files.contents["/home/a.zenka-rig"]).contents;
    carried.site->record.site.label = "Elsewhere";
    carried.savedSites.front().elev = 1;
    rig.files.contents["/home/a.zenka-rig"] = rig::toJson(carried);

    window->commands().trigger(QStringLiteral("importRig"));
    window.settle();
    view().read(file);
    pass();
    EXPECT_TRUE(window.says(QStringLiteral("Elsewhere")));
    EXPECT_NE(rig.model.site().site().label, "Elsewhere") << "nothing is taken before the yes";
    ASSERT_NE(window.named("transferPart0"), nullptr);
    window.named("transferPart0")->forceActiveFocus();
    window.key(Qt::Key_Space); // the site stays
    window.named("transferImport")->forceActiveFocus();
    window.key(Qt::Key_Return);
    EXPECT_NE(rig.model.site().site().label, "Elsewhere");
    EXPECT_EQ(rig.model.sites().savedSites()->front().elev, 1);
    EXPECT_TRUE(window.says(QStringLiteral("✓ Taken: 4 saved sites")));
}

TEST_F(WindowRigTransfer, byKeyAloneItIsPutWhereOneLikesUnderTheNameThatIsOffered) {
    window->commands().trigger(QStringLiteral("exportRig"));
    window.settle();
    window.named("transferChoose")->forceActiveFocus();
    window.key(Qt::Key_Return);
    window.settle();
    EXPECT_TRUE(window.says(QStringLiteral("Home"))) << "places to begin with";
    window.key(Qt::Key_Return);
    pass();
    EXPECT_TRUE(window.says(QStringLiteral("Exported to \"Zenka Rig 2026-08-12.zenka-rig\"")));
    EXPECT_EQ(rig.files.count(".zenka-rig"), 1);
}

TEST_F(WindowRigTransfer, inALiveRunTheMenuSaysWhyNothingIsImported) {
    EXPECT_TRUE(canImport());
    rig.load(rig.frameAt(3000));
    rig.model.transport().armRealEclipseTiming(true);
    EXPECT_FALSE(canImport());
    const QVariantList rows = window->commands().inMenu(QStringLiteral("File"));
    const auto row = std::ranges::find_if(rows, [](const QVariant& each) {
        return each.toMap().value(QStringLiteral("id")) == QLatin1String("importRig");
    });
    ASSERT_NE(row, rows.end());
    EXPECT_EQ(row->toMap().value(QStringLiteral("whyOff")), QLatin1String(" (not in a live run)"));
    EXPECT_TRUE(window->commands().isEnabled(QStringLiteral("exportRig")));
}

TEST_F(WindowRigTransfer, theChecklistIsWrittenForTheUserAndOpenedAndNeverOverAnother) {
    for (int i = 0; i < 2; ++i) {
        window->commands().trigger(QStringLiteral("printChecklist"));
        pass();
    }
    EXPECT_EQ(rig.files.count(".pdf"), 2);
    ASSERT_EQ(opened.size(), 2);
    EXPECT_TRUE(opened[0].path().endsWith(
        QStringLiteral("Zenka Reports/Zenka Checklist 2026-08-12 Zaragoza, ES.pdf")));
    const std::string sheet = textOf(rig.files.contents[opened[0].toLocalFile().toStdString()]);
    const auto* c2 = rig.model.site().circ()->event("C2");
    ASSERT_NE(c2, nullptr);
    EXPECT_NE(sheet.find(rig.model.site().fmtClock(c2->tHours * 3600)), std::string::npos) << sheet;
    rig.files.broken = true;
    window->commands().trigger(QStringLiteral("printChecklist"));
    pass();
    EXPECT_EQ(opened.size(), 2);
    EXPECT_TRUE(rig.logged("The checklist could not be written"));
}

} // namespace
