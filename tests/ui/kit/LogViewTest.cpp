#include "ui/kit/LogView.h"

#include "support/VirtualRig.h"

#include <gtest/gtest.h>

using namespace zenka;
using test::VirtualRig;

namespace {

class LogView : public testing::Test {
protected:
    void push(const char* line) { rig.model.log().pushLog(line); }
    std::string at(int row, int role = ui::LogView::lineRole) {
        return view.data(view.index(row), role).toString().toStdString();
    }

    VirtualRig rig;
    ui::LogView view{rig.model, nullptr};
};

} // namespace

TEST_F(LogView, aLinesStateIsAPlainShapeAndAWord) {
    const std::pair<const char*, ui::LogLine> cases[] = {
        {"● CAM1  C2  ISO 200 f/8 1/15  ✓ 212ms", {"●", "fired", "CAM1  C2  ISO 200 f/8 1/15  ✓ 212ms"}},
        {"⚠️ DROPPED  CAM1  C2  no answer", {"▲", "dropped", "DROPPED  CAM1  C2  no answer"}},
        {"⚠️ SHUTTER MISMATCH. x", {"⚠", "warning", "SHUTTER MISMATCH. x"}},
        {"⏭ SKIPPED (not fired): CAM1  C2  — late",
         {"»", "skipped", "SKIPPED (not fired): CAM1  C2  — late"}},
        {"🔊 C2: Filter off", {"♪", "cue", "C2: Filter off"}},
        {"Timing: SIMULATED", {"", "", "Timing: SIMULATED"}},
        {"Moon 🌑 and sign ☀️", {"", "", "Moon  and sign ☀"}}, // no coloured picture at night
        {"", {"", "", ""}}};
    for (const auto& [line, parts] : cases)
        EXPECT_EQ(ui::logLine(QString::fromUtf8(line)), parts) << line;
}

TEST_F(LogView, showsTheNewest200LinesThatTheFilterLetsThrough) {
    for (int i = 0; i < 250; ++i)
        push(i % 2 ? "odd" : "even");
    EXPECT_EQ(view.rowCount(), 200);
    view.setFilter(QStringLiteral(" ODD "));
    EXPECT_EQ(view.rowCount(), 100);
    EXPECT_EQ(view.countText(), "100 of 200 lines");
    push("odd and new");
    EXPECT_EQ(at(0), "odd and new");
    EXPECT_EQ(view.rowCount(), 101) << "an even line fell off the end";
    push("even");
    EXPECT_EQ(view.rowCount(), 100) << "an odd line fell off the end";
    view.setFilter(QStringLiteral("nowhere"));
    EXPECT_EQ(view.emptyText(), "No line has \"nowhere\" in it. Clear the filter to see all.");
    view.setFilter({});
    EXPECT_EQ(view.rowCount(), 200);
}

TEST_F(LogView, selectedLinesStaySelectedWhileNewOnesComeAndAreCopiedOldestFirst) {
    for (const char* line : {"a", "b", "c", "d"})
        push(line);
    EXPECT_EQ(view.copyText(), "a\nb\nc\nd\n") << "with none selected, all";
    view.select(1); // c
    push("e");
    view.selectTo(3); // from c, now in row 2, to b
    EXPECT_EQ(view.copyText(), "b\nc\n");
    view.toggle(0);
    EXPECT_EQ(view.selected(), 3);
    EXPECT_EQ(view.copyText(), "b\nc\ne\n");
    view.selectNone();
    view.selectTo(99);
    EXPECT_EQ(view.selected(), 0);
}
