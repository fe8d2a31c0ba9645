#include "ui/script/ScriptView.h"

#include "support/VirtualRig.h"
#include "ui/script/ScriptPreview.h"
#include "ui/script/ScriptTokens.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QTextCursor>
#include <QTextDocument>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using namespace zenka;
using test::VirtualRig;
using testing::ElementsAre;
using TokenKind = ui::ScriptToken::Kind;

namespace {

/// The editor's text area without a window, and the view model on a rig.
class ScriptView : public testing::Test {
protected:
    ScriptView() {
        QQmlComponent component(&engine);
        component.setData("import QtQuick\nTextEdit { textFormat: TextEdit.PlainText }", {});
        area.reset(component.create());
        view.setDocument(area->property("textDocument").value<QQuickTextDocument*>());
    }

    QTextDocument& document() { return *view.document()->textDocument(); }
    std::string shown() { return document().toPlainText().toStdString(); }
    void type(const char* text) {
        QTextCursor cursor(&document());
        cursor.movePosition(QTextCursor::End);
        cursor.insertText(QString::fromUtf8(text));
    }

    VirtualRig rig;
    rig::ScriptDesk& desk = rig.model.script();
    QQmlEngine engine;
    std::unique_ptr<QObject> area;
    ui::ScriptView view{rig.model, rig.machine.all, nullptr};
};

std::vector<std::pair<TokenKind, std::string>> kinds(const char* line) {
    const QString text = QString::fromUtf8(line);
    std::vector<std::pair<TokenKind, std::string>> pieces;
    for (const ui::ScriptToken& token : ui::scriptTokens(text))
        pieces.emplace_back(token.kind, text.mid(token.start, token.length).toStdString());
    return pieces;
}

} // namespace

TEST_F(ScriptView, typingReachesTheCompilerOnceItPauses) {
    view.newScript();
    const std::string before = shown();
    type("\nTAKEPIC,MAX,+,00:01.0,CAM2,1/250,8.0,200,0.000,RAW,None,N,x");
    EXPECT_EQ(view.summary(), "1 frame on 1 camera, no cues, no diagnostics");
    rig.run(0.5);
    EXPECT_EQ(view.summary(), "2 frames on 2 cameras, no cues, no diagnostics");
    EXPECT_TRUE(view.edited());
    document().undo();
    EXPECT_EQ(shown(), before);
    rig.run(0.5);
    EXPECT_FALSE(view.edited());
}

TEST_F(ScriptView, noCharacterIsLostBetweenEditorAndRig) {
    const std::string odd = "# no-break\u00A0space, line\u2028separator, \U0001F311, tab\there\n# end\n";
    desk.load(odd, "odd");
    type("# more");
    EXPECT_EQ(desk.scriptText().get(), odd + "# more");
}

TEST_F(ScriptView, undoAcrossFilesBringsEachFilesNameBack) {
    rig.files.contents["/s/a.zenka"] = "# a";
    rig.files.contents["/s/b.zenka"] = "# b";
    const auto open = [this](const char* file) {
        view.open(QUrl::fromLocalFile(QString::fromLatin1(file)));
        rig.run(0.1);
    };
    open("/s/a.zenka");
    type(" typed");
    open("/s/b.zenka");
    view.newScript();
    EXPECT_EQ(view.name(), "Untitled");
    document().undo();
    EXPECT_EQ(view.name(), "b.zenka");
    EXPECT_FALSE(view.edited());
    document().undo();
    EXPECT_EQ(shown(), "# a typed");
    EXPECT_EQ(view.name(), "a.zenka");
    EXPECT_TRUE(view.edited());
    document().redo();
    EXPECT_EQ(view.name(), "b.zenka");
    type(" typed in b");
    EXPECT_EQ(view.name(), "b.zenka") << "what could be redone before cannot any more";
    EXPECT_TRUE(view.save());
    rig.run(0.1);
    EXPECT_EQ(rig.files.contents["/s/a.zenka"], "# a");
    EXPECT_EQ(rig.files.contents["/s/b.zenka"], "# b typed in b");
}

TEST_F(ScriptView, aFileWithTheVeryTextThatStandsIsStillAnotherFile) {
    rig.files.contents["/s/same.zenka"] = desk.scriptText().get() + "# x";
    type("# x");
    view.open(QUrl::fromLocalFile(QStringLiteral("/s/same.zenka")));
    rig.run(0.1);
    type("y");
    EXPECT_EQ(view.name(), "same.zenka");
    EXPECT_TRUE(view.edited());
}

TEST_F(ScriptView, tellsWhatCameOfAFile) {
    EXPECT_FALSE(view.save()) << "a file must be asked for";
    view.open(QUrl::fromLocalFile(QStringLiteral("/s/gone.zenka")));
    EXPECT_EQ(view.message(), "Reading \"gone.zenka\"…");
    rig.run(0.1);
    EXPECT_TRUE(view.failed());
    EXPECT_TRUE(view.message().startsWith(QStringLiteral("\"gone.zenka\" cannot be read.")));
    view.setDefault(true);
    EXPECT_TRUE(view.failed()) << "a script in no file cannot be the one of each start";
    view.saveAs(QUrl::fromLocalFile(QStringLiteral("/s/o'brien #1.zenka")));
    rig.run(0.1);
    EXPECT_EQ(view.message(), "Saved \"o'brien #1.zenka\".");
    EXPECT_TRUE(rig.files.contents.contains("/s/o'brien #1.zenka"));
    EXPECT_EQ(view.fileWords(), "saved");
    view.setDefault(true);
    EXPECT_TRUE(view.isDefault());
    ASSERT_EQ(view.recent().size(), 1);
    EXPECT_EQ(view.recent().first().toMap()[QStringLiteral("folder")], QStringLiteral("/s"));
}

TEST_F(ScriptView, theTextIsKeptWhenTheEditorGoesBeforeTypingPauses) {
    type("# half a thou");
    area.reset();
    const auto kept = rig.machine.settings.text("eclipse.scriptText");
    ASSERT_TRUE(kept);
    EXPECT_TRUE(kept->ends_with("# half a thou"));
    desk.load("# from the wizard", "wizard"); // with no editor there
    EXPECT_EQ(view.name(), "wizard");
}

TEST_F(ScriptView, diagnosticsStandOnTheirLinesAndRoundsOfALoopCountOnce) {
    desk.load("# one\r\n# two\u2028# within\nTAKPIC,x\nFOR,(VAR),1,1,20\n"
              "TAKEPIC,MAGPRE -1,+,0,CAM1\nENDFOR\nENDFOR\n",
              "faults");
    desk.compile();
    const ui::DiagnosticsList& list = *view.diagnostics();
    ASSERT_EQ(list.count(), 3);
    const auto at = [&](int row, int role) { return list.data(list.index(row), role); };
    EXPECT_EQ(at(0, ui::DiagnosticsList::lineRole), 3);
    EXPECT_EQ(at(1, ui::DiagnosticsList::lineRole), 5);
    EXPECT_TRUE(at(1, ui::DiagnosticsList::messageRole).toString().endsWith(QStringLiteral(" (20 times)")));
    EXPECT_EQ(at(2, ui::DiagnosticsList::lineRole), 7);
    EXPECT_EQ(list.severityOf(2), 1);
    EXPECT_EQ(list.severityOf(6), 2);
    EXPECT_EQ(list.severityOf(0), 0);
    EXPECT_EQ(view.summary(), "no frames, no cues, 1 error, 2 warnings");
    EXPECT_EQ(view.rowAt(view.positionOf(6)), 6);
    EXPECT_EQ(list.messageOf(6), "✖ ENDFOR without FOR");
}

TEST_F(ScriptView, framesFarFromTheEclipseAreTold) {
    rig.load(rig.frameAt(rig.model.site().tC1()) + rig.frameAt(rig.model.site().tC4() + 4000));
    EXPECT_TRUE(view.outside().startsWith(QStringLiteral("1 frame more than an hour outside")));
    EXPECT_THAT(ui::density({0, 1, 9.99, 10, 11, -1}, 0, 10, 5), ElementsAre(2, 0, 0, 0, 2));
    EXPECT_TRUE(ui::density({1}, 5, 5, 0).empty());
}

TEST(ScriptTokens, nameTheFieldsOfALine) {
    EXPECT_THAT(kinds("TAKEPIC,C2,-,00:08.0, CAM1 ,1/100,8.0,200,0.000,RAW,None,N,Ring, with a comma"),
                ElementsAre(std::pair(TokenKind::command, "TAKEPIC"), std::pair(TokenKind::reference, "C2"),
                            std::pair(TokenKind::number, "-"), std::pair(TokenKind::number, "00:08.0"),
                            std::pair(TokenKind::camera, "CAM1"), std::pair(TokenKind::number, "1/100"),
                            std::pair(TokenKind::number, "8.0"), std::pair(TokenKind::number, "200"),
                            std::pair(TokenKind::number, "0.000"), std::pair(TokenKind::number, "RAW"),
                            std::pair(TokenKind::number, "None"), std::pair(TokenKind::number, "N"),
                            std::pair(TokenKind::words, "Ring, with a comma")));
    EXPECT_THAT(kinds("setexp,MAGPRE,50,+,1,CAM1"),
                ElementsAre(std::pair(TokenKind::command, "setexp"),
                            std::pair(TokenKind::reference, "MAGPRE"), std::pair(TokenKind::reference, "50"),
                            std::pair(TokenKind::number, "+"), std::pair(TokenKind::number, "1"),
                            std::pair(TokenKind::camera, "CAM1")));
    EXPECT_THAT(kinds("  # a remark, TAKEPIC"),
                ElementsAre(std::pair(TokenKind::comment, "# a remark, TAKEPIC")));
    EXPECT_THAT(kinds("TAKPIC,C2"), ElementsAre(std::pair(TokenKind::unknown, "TAKPIC")));
    EXPECT_TRUE(kinds("").empty() && kinds("  ").empty() && kinds(",,").empty());
    EXPECT_THAT(kinds("TAKEPIC,MAGPRE,"), ElementsAre(std::pair(TokenKind::command, "TAKEPIC"),
                                                      std::pair(TokenKind::reference, "MAGPRE")));
}

// The colours must not call a command known that the compiler reports, or the other way round.
TEST(ScriptTokens, knowTheCommandsThatTheCompilerKnows) {
    VirtualRig rig;
    for (const char* command :
         {"TAKEPIC", "TAKEBST", "TAKEBKT", "RAMPUP", "RAMPDN", "RAMPSUD", "SETEXP", "BKTDATA", "PLAY",
          "COMMAND", "CAMSET", "FOR", "ENDFOR", "LVSTART", "LVSTOP", "CHGCSSL", "playy", "TAKE", "REM"}) {
        rig.load(command);
        const auto& diags = rig.model.script().diagnostics();
        const bool unknown = std::ranges::any_of(
            diags, [](const auto& diag) { return diag.message.starts_with("unknown command"); });
        EXPECT_EQ(kinds(command).front().first == TokenKind::unknown, unknown) << command;
    }
}
