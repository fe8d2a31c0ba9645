#include "rig/shared/SettingsKeys.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zenka;
using test::VirtualRig;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr char path[] = "/home/o'brien/My scripts/a day.zenka";

class ScriptFilesTest : public testing::Test {
protected:
    VirtualRig rig;
    rig::ScriptDesk& desk = rig.model.script();
    std::string fault = "not heard";

    void open(const std::string& file) {
        fault = "not heard";
        desk.openFile(file, [this](const std::string& sentence) { fault = sentence; });
        rig.run(0.1);
    }
    void save(const std::string& file) {
        fault = "not heard";
        desk.saveFile(file, [this](const std::string& sentence) { fault = sentence; });
        rig.run(0.1);
    }
    std::string setting(const char* key) const { return rig.machine.settings.text(key).value_or(""); }
};

} // namespace

TEST_F(ScriptFilesTest, aFileIsReadEditedAndWrittenBack) {
    rig.files.contents[path] = rig.frameAt(1);
    open(path);
    EXPECT_EQ(fault, "");
    EXPECT_EQ(desk.currentScriptName().get(), "a day.zenka");
    EXPECT_EQ(desk.captures().size(), 1U) << "it is compiled";
    EXPECT_FALSE(desk.edited().get());
    desk.setScriptText(rig.frameAt(1) + rig.frameAt(2));
    EXPECT_TRUE(desk.edited().get());
    desk.setScriptText(rig.frameAt(1));
    EXPECT_FALSE(desk.edited().get()) << "typed back to what the file has";
    desk.setScriptText(rig.frameAt(3));
    save(desk.scriptFile().get());
    EXPECT_EQ(fault, "");
    EXPECT_EQ(rig.files.contents[path], rig.frameAt(3));
    EXPECT_FALSE(desk.edited().get());
}

TEST_F(ScriptFilesTest, aFileThatCannotBeReadGivesASentenceAndChangesNothing) {
    desk.setScriptText("# mine");
    rig.files.contents["/p.jpg"] = std::string("\xFF\xD8\xFF\xE0 picture", 12);
    rig.files.contents["/zeros"] = std::string(50, '\0');
    rig.files.contents["/film"] = std::string(rig::ScriptFiles::mostBytes + 1, 'a');
    const std::pair<const char*, const char*> cases[] = {
        {"/gone", "cannot be read"}, {"/p.jpg", "UTF-8"}, {"/zeros", "UTF-8"}, {"/film", "too long"}};
    for (const auto& [file, part] : cases) {
        open(file);
        EXPECT_THAT(fault, HasSubstr(part));
        EXPECT_THAT(fault, HasSubstr("The script here is as it was."));
        EXPECT_EQ(desk.scriptText().get(), "# mine");
        EXPECT_EQ(desk.scriptFile().get(), "");
    }
    EXPECT_TRUE(desk.recentScripts().empty());
}

TEST_F(ScriptFilesTest, aFailedSaveKeepsTheTextAndTheEditedMark) {
    rig.files.contents[path] = "# a";
    open(path);
    desk.setScriptText("# b");
    rig.files.broken = true;
    save(path);
    EXPECT_THAT(fault, HasSubstr("\"a day.zenka\" could not be written"));
    EXPECT_TRUE(desk.edited().get());
    EXPECT_EQ(rig.files.contents[path], "# a");
    EXPECT_EQ(setting(rig::settingsKeys::scriptText), "# b");
}

TEST_F(ScriptFilesTest, typingWhileAFileIsWrittenLeavesTheMark) {
    desk.setScriptText("# a");
    desk.saveFile(path, [](const std::string&) {});
    desk.setScriptText("# ab");
    rig.run(0.1);
    EXPECT_EQ(rig.files.contents[path], "# a");
    EXPECT_EQ(desk.scriptFile().get(), path);
    EXPECT_TRUE(desk.edited().get());
}

TEST_F(ScriptFilesTest, aSaveThatEndsUnderAnotherScriptDoesNotNameIt) {
    desk.setScriptText("# a");
    desk.saveFile(path, [](const std::string&) {});
    desk.loadExample("# example", "example.zenka");
    rig.run(0.1);
    EXPECT_EQ(rig.files.contents[path], "# a");
    EXPECT_EQ(desk.currentScriptName().get(), "example.zenka");
    EXPECT_EQ(desk.scriptFile().get(), "");
}

TEST_F(ScriptFilesTest, windowsLineEndsComeBackInTheFileAndNotInTheText) {
    rig.files.contents[path] = "\xEF\xBB\xBF# a\r\n# b\r\n";
    open(path);
    EXPECT_EQ(desk.scriptText().get(), "# a\n# b\n");
    EXPECT_FALSE(desk.edited().get());
    desk.setScriptText("# a\n# c\n");
    save(path);
    EXPECT_EQ(rig.files.contents[path], "# a\r\n# c\r\n");
}

TEST_F(ScriptFilesTest, theScriptsUsedLastAreListedOnceNewestFirst) {
    for (int i = 0; i < 12; ++i)
        rig.files.contents["/s/" + std::to_string(i)] = "# x";
    for (int i = 0; i < 12; ++i)
        open("/s/" + std::to_string(i));
    open("/s/5");
    save("/s/new");
    EXPECT_THAT(desk.recentScripts(), ElementsAre("/s/new", "/s/5", "/s/11", "/s/10", "/s/9", "/s/8", "/s/7",
                                                  "/s/6", "/s/4", "/s/3"));
}

TEST_F(ScriptFilesTest, undoingAReplacementBringsNameAndFileBack) {
    rig.files.contents[path] = "# a";
    open(path);
    const std::size_t opened = desk.origin();
    desk.newScript();
    EXPECT_EQ(desk.currentScriptName().get(), "Untitled");
    EXPECT_TRUE(desk.scriptText().get().starts_with("# New Zenka script."));
    EXPECT_EQ(desk.scriptFile().get(), "");
    EXPECT_FALSE(desk.edited().get());
    desk.setScriptText("# a");
    desk.takeOrigin(opened);
    EXPECT_EQ(desk.scriptFile().get(), path);
    EXPECT_FALSE(desk.edited().get());
    desk.takeOrigin(99);
    EXPECT_EQ(desk.scriptFile().get(), path);
}

TEST_F(ScriptFilesTest, theNextStartKnowsTheFileAndWhetherTheTextIsInIt) {
    rig.files.contents[path] = "# a";
    open(path);
    desk.setScriptText("# half a thou");
    desk.keep(); // as at the end of the program, before the typing pause
    VirtualRig next;
    next.files.contents = rig.files.contents;
    next.machine.settings = rig.machine.settings;
    next.model.bootstrap();
    next.run(0.1);
    EXPECT_EQ(next.model.script().scriptText().get(), "# half a thou");
    EXPECT_EQ(next.model.script().scriptFile().get(), path);
    EXPECT_TRUE(next.model.script().edited().get());
}

TEST_F(ScriptFilesTest, aDefaultScriptPutsAsideTextThatIsInNoFile) {
    rig.files.contents["/default"] = "# default";
    desk.setDefaultScript("/default");
    EXPECT_EQ(desk.defaultScript(), "/default");
    desk.setScriptText("# not saved");
    desk.keep();
    desk.restore();
    EXPECT_EQ(desk.scriptText().get(), "# default");
    EXPECT_EQ(desk.unsavedText(), "# not saved");
    desk.compile();
    desk.restore();
    EXPECT_EQ(desk.unsavedText(), "# not saved") << "until something else is put aside";
    desk.setDefaultScript("");
    EXPECT_EQ(desk.defaultScript(), "");
}

TEST_F(ScriptFilesTest, aReplacedTextThatNoFileHasCanBeBroughtBack) {
    desk.newScript();
    desk.loadExample("# example", "example.zenka");
    EXPECT_FALSE(desk.unsavedText()) << "nothing was typed so far";
    desk.setScriptText("# typed");
    rig.files.contents[path] = "# saved";
    open(path);
    EXPECT_EQ(desk.unsavedText(), "# typed");
    desk.newScript();
    EXPECT_EQ(desk.unsavedText(), "# typed") << "a text that stands in its file needs no keeping";
    desk.setScriptText("# typed too");
    desk.bringBackUnsavedText();
    EXPECT_EQ(desk.scriptText().get(), "# typed");
    EXPECT_EQ(desk.unsavedText(), "# typed too") << "the two change places";
}

TEST_F(ScriptFilesTest, theWizardsScriptIsCompiledAndBelongsToTheFileThatItWasWrittenTo) {
    desk.setScriptText("# mine");
    desk.applyWizardScript(rig.frameAt(10), "Mine");
    EXPECT_EQ(desk.captures().size(), 1U);
    EXPECT_EQ(desk.scriptFile().get(), "");
    EXPECT_EQ(desk.unsavedText(), "# mine");
    EXPECT_TRUE(rig.logged("Loaded “Mine” from the Script Wizard — press play to simulate."));
    desk.applyWizardScript("# a", "a.zenka", path);
    EXPECT_EQ(desk.scriptFile().get(), path);
    EXPECT_FALSE(desk.edited().get());
    EXPECT_EQ(desk.recentScripts().front(), path);
}
