#include "rig/bodies/FramingBook.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

using namespace zenka;
using test::VirtualRig;

namespace {

/// A body as a detection brings it: nobody has labelled it in this session.
std::shared_ptr<test::ScriptedCamera> plugIn(VirtualRig& rig, const std::string& id,
                                             const std::string& model = "Z8") {
    auto camera = std::make_shared<test::ScriptedCamera>(id, model);
    rig.model.roster().add(camera);
    return camera;
}

std::vector<std::string> labels(const std::vector<rig::LibraryDesk::Entry>& entries) {
    std::vector<std::string> labels;
    for (const auto& entry : entries)
        labels.push_back(entry.label);
    return labels;
}

using testing::ElementsAre;
using testing::IsEmpty;

} // namespace

TEST(LibraryDesk, labelAndLensFollowABodyBySerialIntoTheNextSession) {
    VirtualRig first;
    const auto wide = plugIn(first, "wide");
    const auto tele = plugIn(first, "tele", "Z9");
    first.model.roster().setLabel(*wide, "CAM1");
    first.model.library().setLens("SN-wide", " 20 mm f/1.8 ");
    first.model.roster().setLabel(*wide, "CAM2");
    first.model.library().setLens("SN-tele", "400 mm");
    first.model.library().setLens("SN-tele", " ");
    first.model.library().setLens("SN-nobody", "50 mm");
    first.run(1);

    VirtualRig next;
    next.files.contents = first.files.contents;
    next.model.bootstrap();
    const auto found = plugIn(next, "wide");
    EXPECT_EQ(next.model.roster().labelFor(*found), "CAM2");
    ASSERT_THAT(labels(next.model.library().entries()), ElementsAre("CAM2", "Z9"))
        << "a body that only had a lens is known under the label it had";
    EXPECT_EQ(next.model.library().find("SN-wide")->lens, "20 mm f/1.8");
    EXPECT_EQ(next.model.library().find("SN-tele")->lens, std::nullopt);
    EXPECT_EQ(next.model.library().find("SN-tele")->model, "Z9");
}

TEST(LibraryDesk, aSerialThatTellsNoBodyFromAnotherKeepsNeitherLabelNorLens) {
    VirtualRig rig;
    auto& library = rig.model.library();
    const auto nameless = plugIn(rig, "nameless");
    nameless->serialNumber.clear();
    rig.model.roster().setLabel(*nameless, "CAM9");
    EXPECT_THAT(library.lensFault(""), testing::HasSubstr("does not tell its serial number"));

    const auto one = plugIn(rig, "one");
    rig.model.roster().setLabel(*one, "CAM1");
    library.setLens("SN-one", "400 mm");
    const auto twin = plugIn(rig, "twin");
    twin->serialNumber = "SN-one";
    rig.model.roster().setLabel(*twin, "CAM2");
    library.setLens("SN-one", "20 mm");
    EXPECT_THAT(library.lensFault("SN-one"),
                testing::HasSubstr("Two bodies report the serial number SN-one"));
    ASSERT_THAT(labels(library.entries()), ElementsAre("CAM1")) << "the twin does not take its place";
    EXPECT_EQ(library.entries()[0].lens, "400 mm");
    rig.model.roster().removeCamera("twin");
    EXPECT_EQ(library.lensFault("SN-one"), "");
}

TEST(LibraryDesk, forgottenBodiesComeBackLastFirstUnlessTheyAreKnownAgain) {
    VirtualRig rig;
    auto& library = rig.model.library();
    for (const char* id : {"a", "b", "c"})
        rig.model.roster().setLabel(*plugIn(rig, id), std::string("CAM ") + id);
    library.setLens("SN-b", "400 mm");
    rig.model.roster().removeCamera("b");
    int changes = 0;
    library.changed().connect([&] { ++changes; });
    for (const char* serial : {"SN-a", "SN-b", "SN-c", "SN-unknown"})
        library.forget(serial);
    EXPECT_EQ(changes, 3);
    EXPECT_THAT(library.entries(), IsEmpty());
    EXPECT_EQ(rig.model.roster().labelFor(*rig.model.roster().cameras()[0]), "CAM a")
        << "one that is here keeps its label, for the script calls it so";
    const auto again = plugIn(rig, "b");
    EXPECT_EQ(rig.model.roster().labelFor(*again), "Z8") << "one that was not here is as a new one";

    rig.model.roster().setLabel(*rig.model.roster().cameras()[1], "CAM x"); // c
    EXPECT_THAT(labels(library.forgotten()), ElementsAre("CAM a", "CAM b"));
    library.undoForget();
    EXPECT_THAT(labels(library.entries()), ElementsAre("CAM x", "CAM b"));
    EXPECT_EQ(library.find("SN-b")->lens, "400 mm");
    EXPECT_EQ(rig.model.roster().labelFor(*again), "CAM b");
    library.undoForget();
    library.undoForget();
    EXPECT_EQ(library.entries().size(), 3U);
}

TEST(LibraryDesk, absentBodiesAreThoseOfWhichNoneIsConnected) {
    VirtualRig rig;
    auto& library = rig.model.library();
    for (const char* id : {"here", "lost", "let go", "removed"})
        rig.model.roster().setLabel(*plugIn(rig, id), id);
    const auto lost = rig.model.roster().cameras()[1];
    EXPECT_THAT(library.absentLibraryBodies(), IsEmpty());
    rig.model.roster().setDisconnected("lost", true);
    rig.model.roster().cameras()[2]->disconnect();
    rig.model.roster().removeCamera("removed");
    EXPECT_THAT(labels(library.absentLibraryBodies()), ElementsAre("lost", "let go", "removed"));
    rig.model.roster().setDisconnected("lost", false);
    EXPECT_THAT(labels(library.absentLibraryBodies()), ElementsAre("let go", "removed"));
}

TEST(LibraryDesk, aDamagedLibraryIsToldAndWhatCanBeReadOfItGivesItsLabels) {
    VirtualRig rig;
    rig.files.contents[rig.folders.applicationSupport() / "cameras.json"] =
        R"([{"serial": "SN-a", "model": "Z8", "label": "CAM1", "lens": "20 mm"}, {"serial": 7}])";
    rig.model.bootstrap();
    EXPECT_EQ(rig.countLines("⚠️ The camera library could not be read whole; cameras read: 1."), 1);
    EXPECT_EQ(rig.model.roster().labelFor(*plugIn(rig, "a")), "CAM1");
    EXPECT_EQ(rig.model.library().find("SN-a")->lens, "20 mm");
}

TEST(LibraryDesk, theFramingFollowsABodyAndThePlanUnderALabelGoesToTheBodyThatGetsIt) {
    const cameras::FramingRecord planned{.focalMm = 600, .rotationDeg = 90};
    const cameras::FramingRecord own{.focalMm = 1000, .tracking = true};
    VirtualRig first;
    rig::FramingBook book(first.machine.settings, first.model.library());
    EXPECT_EQ(book.find("", "CAM1"), std::nullopt);
    book.keep("", "CAM1", planned);
    EXPECT_EQ(book.find("", "cam1"), planned) << "as the script's names go";
    EXPECT_EQ(book.find("", ""), std::nullopt) << "the plan without a body is another one";

    const auto body = plugIn(first, "wide");
    first.model.roster().setLabel(*body, "CAM1");
    EXPECT_EQ(book.find("SN-wide", "CAM1"), planned);
    book.keep("SN-wide", "CAM1", own);
    first.model.roster().setLabel(*body, "CAM2");
    first.model.library().setLens("SN-wide", "1000 mm");
    first.run(1);
    EXPECT_EQ(book.find("", "CAM1"), planned);

    VirtualRig next;
    next.files.contents = first.files.contents;
    next.model.bootstrap();
    rig::FramingBook later(next.machine.settings, next.model.library());
    EXPECT_EQ(later.find("SN-wide", "CAM2"), own) << "neither the label nor the lens took it away";

    // Two bodies of one serial number: it would be one's framing or the other's.
    plugIn(next, "wide");
    plugIn(next, "wide");
    later.keep("SN-wide", "CAM3", planned);
    EXPECT_EQ(next.model.library().find("SN-wide")->framing, own);
    EXPECT_EQ(later.find("SN-wide", "CAM3"), planned);
}
