#include "ui/dashboard/CamerasView.h"

#include "support/VirtualRig.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace zenka;
using test::VirtualRig;
using Role = ui::CamerasView::Role;

namespace {

class CamerasView : public testing::Test {
protected:
    std::string at(int row, int role) { return view.data(view.index(row), role).toString().toStdString(); }
    bool is(int row, int role) { return view.data(view.index(row), role).toBool(); }
    QString id(int row) { return view.data(view.index(row), Role::idRole).toString(); }

    VirtualRig rig;
    ui::CamerasView view{rig.model, nullptr};
};

} // namespace

TEST_F(CamerasView, theScriptsCamerasWithoutABodyAreListedAndFilledInTurn) {
    rig.load("");
    EXPECT_EQ(view.rowCount(), 0);
    EXPECT_FALSE(view.emptyText().isEmpty());
    EXPECT_TRUE(view.offer().isEmpty());
    rig.load(rig.frameAt(1, "CAM1") + rig.frameAt(2, "CAM2") + rig.frameAt(3, "CAM2"));
    EXPECT_EQ(view.summary(), "No bodies, 2 missing");
    EXPECT_EQ(at(1, Role::detailsRole), "missing · 2 frames in the script");
    EXPECT_EQ(view.nextToken(), "CAM1");
    view.add(QStringLiteral("DC-GH6"));
    EXPECT_EQ(view.summary(), "1 body, 1 missing");
    EXPECT_EQ(at(0, Role::labelRole), "CAM1");
    EXPECT_EQ(at(0, Role::modelRole), "GH6");
    EXPECT_EQ(at(0, Role::detailsRole), "simulated · connected");
    EXPECT_EQ(view.offer(), "Add a simulated body for CAM2");
    view.addForScript();
    EXPECT_EQ(view.summary(), "2 bodies");
    view.add(QStringLiteral("Z8"));
    EXPECT_EQ(at(2, Role::labelRole), "Z8") << "no camera is left to stand for";
    EXPECT_FALSE(is(2, Role::usedRole));
    view.remove(id(0));
    EXPECT_EQ(view.nextToken(), "CAM1");
}

TEST_F(CamerasView, oneBodyForEachCameraEvenWhenANameContainsAnother) {
    rig.load(rig.frameAt(1, "CAM1") + rig.frameAt(2, "CAM10") + rig.frameAt(3, "cam1"));
    view.addForScript();
    EXPECT_EQ(rig.model.roster().cameras().size(), 2U);
    EXPECT_TRUE(view.offer().isEmpty());
}

TEST_F(CamerasView, aLabelIsTakenOnlyIfItTellsTheBodyApart) {
    view.add(QStringLiteral("Z8"));
    view.add(QStringLiteral("Z9"));
    EXPECT_FALSE(view.setLabel(id(0), QStringLiteral("  ")));
    EXPECT_FALSE(view.setLabel(id(0), QStringLiteral("z9")));
    EXPECT_TRUE(view.labelFault(id(0), QStringLiteral("z9")).startsWith(QStringLiteral("Another body")));
    EXPECT_TRUE(view.setLabel(id(0), QStringLiteral(" Wide ")));
    EXPECT_EQ(at(0, Role::labelRole), "Wide");
    EXPECT_TRUE(view.setLabel(id(0), QStringLiteral("wide"))) << "its own in other letters";
}

TEST_F(CamerasView, removedBodiesComeBackLastFirstWithLabelAndCountUnlessTheLabelIsTaken) {
    rig.load(rig.frameAt(0) + rig.frameAt(1, "CAM2"));
    view.addForScript();
    rig.playFrom(-1);
    rig.run(2);
    ASSERT_EQ(at(0, Role::countsRole), "● 1");
    view.remove(id(0));
    view.remove(id(0));
    EXPECT_EQ(view.undoText(), "CAM2 removed.");
    view.undoRemove();
    EXPECT_EQ(view.undoText(), "CAM1 removed.");
    view.undoRemove();
    EXPECT_EQ(view.undoText(), "");
    EXPECT_EQ(view.summary(), "2 bodies");
    EXPECT_EQ(at(1, Role::labelRole), "CAM1");
    EXPECT_EQ(at(1, Role::countsRole), "● 1");
    EXPECT_EQ(at(1, Role::stateRole), "ready");

    view.remove(id(1));
    view.add(QStringLiteral("Z8")); // which stands for CAM1 now
    EXPECT_EQ(view.undoText(), "") << "two bodies of one label would both fire";

    rig.addBody("Real");
    view.remove(id(2));
    EXPECT_EQ(view.undoText(), "") << "a real one is detected again";
}

TEST_F(CamerasView, cardsFollowTheFrames) {
    rig.load(rig.frameAt(0) + rig.frameAt(1) + rig.frameAt(2, "CAM2"));
    const auto body = rig.addBody("CAM1");
    body->outcomes = {{.ok = true, .latencyMs = 212, .responded = true}, test::refusal()};
    EXPECT_EQ(at(0, Role::statusLineRole), "● CAM1  gphoto2 · connected");
    rig.playFrom(-1);
    rig.run(1.5);
    EXPECT_EQ(at(0, Role::countsRole), "● 1");
    EXPECT_EQ(at(0, Role::droppedRole), "");
    EXPECT_EQ(at(0, Role::stateRole), "ready");
    EXPECT_TRUE(at(0, Role::statusLineRole).ends_with("ISO 200 f/8 1/500  ✓ 212ms"))
        << at(0, Role::statusLineRole);
    EXPECT_TRUE(is(0, Role::runRole));
    rig.run(2);
    EXPECT_EQ(at(0, Role::droppedRole), "▲ 1 dropped");
    EXPECT_EQ(at(0, Role::symbolRole), "▲");
    EXPECT_EQ(at(0, Role::warningRole), "Dropped: dropped, camera busy");
    EXPECT_TRUE(at(0, Role::statusLineRole).starts_with("▲ CAM1  dropped: "));
    EXPECT_EQ(at(1, Role::countsRole), "□ 1 without a body");
    body->disconnect();
    rig.run(3);
    EXPECT_EQ(at(0, Role::stateRole), "gone");
}

TEST_F(CamerasView, aCardTellsPortAndLensAndWhatCameOfATest) {
    rig.load(rig.frameAt(0));
    const auto body = rig.addBody("CAM1");
    body->portName = "usb:001,004";
    view.setLens(id(0), QStringLiteral("150-600 mm f/5-6.3 with 1.4x converter"));
    EXPECT_EQ(at(0, Role::detailsRole), "gphoto2 usb:001,004 · connected · 150-600 mm f/5-6.3 with 1.4…");
    EXPECT_EQ(at(0, Role::lensRole), "150-600 mm f/5-6.3 with 1.4x converter");
    view.setLens(id(0), QString());
    EXPECT_EQ(at(0, Role::detailsRole), "gphoto2 usb:001,004 · connected");
    const auto twin = rig.addBody("CAM2");
    twin->serialNumber = body->serialNumber;
    rig.model.roster().setLabel(*twin, "CAM2");
    EXPECT_TRUE(at(1, Role::lensFaultRole).starts_with("Two bodies report the serial number SN-id-CAM1"));

    body->outcomes = {{.ok = false, .note = "camera busy", .responded = true}, test::silence()};
    rig.model.testShots().fire(body, {.iso = 100});
    EXPECT_EQ(at(0, Role::lastFrameRole), "test: waiting for camera…");
    EXPECT_EQ(at(0, Role::warningRole), "");
    rig.run(2);
    EXPECT_EQ(at(0, Role::lastFrameRole), "test failed: ISO 100 f/auto auto  no answer");
    EXPECT_EQ(at(0, Role::warningRole), "Test: no answer");
    EXPECT_EQ(at(0, Role::droppedRole), "") << "a test is no frame of the run";
    rig.model.testShots().fire(body, {.iso = 100});
    EXPECT_EQ(at(0, Role::lastFrameRole), "test  ISO 100 f/auto auto  ✓ 212ms");
    EXPECT_EQ(at(0, Role::warningRole), "");
}

TEST_F(CamerasView, cardsThatStayAreNotMadeAnewSoThatALabelCanBeTyped) {
    rig.load(rig.frameAt(1, "CAM1"));
    rig.addBody("X");
    rig.addBody("Y");
    QSignalSpy resets(&view, &QAbstractItemModel::modelReset);
    QSignalSpy removed(&view, &QAbstractItemModel::rowsRemoved);
    rig.addBody("CAM1"); // the missing card goes, a body's comes
    rig.playFrom(0);
    rig.run(3);
    view.remove(id(1));
    EXPECT_EQ(resets.count(), 0);
    EXPECT_EQ(removed.count(), 2);
    EXPECT_EQ(view.rowCount(), 2);
    EXPECT_EQ(at(1, Role::labelRole), "CAM1");
}
