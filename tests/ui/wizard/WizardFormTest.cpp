#include "ui/wizard/WizardForm.h"

#include "script/WizardCheck.h"
#include "ui/wizard/WizardAnswers.h"

#include <gtest/gtest.h>

#include <set>

using namespace zenka;
using namespace zenka::ui;
using script::WizardChoices;
using WizardForm::Kind;

namespace {

const WizardForm::Field& field(const char* id) {
    const WizardForm::Field* found = WizardForm::fieldOf(id);
    EXPECT_NE(found, nullptr) << id;
    return *found;
}

/// Answers in which every field differs from its initial value.
WizardChoices allDifferent() {
    WizardChoices choices;
    for (const WizardForm::Field& each : WizardForm::fields()) {
        if (each.kind == Kind::check)
            WizardForm::tick(each, !WizardForm::ticked(each, choices), choices);
        else if (each.kind == Kind::choice)
            WizardForm::takeOption(each, WizardForm::optionNow(each, choices) == 0 ? 1 : 0, choices);
        else
            EXPECT_EQ(WizardForm::read(each, "11", choices), "") << each.id;
    }
    return choices;
}

std::string noteOf(const char* id, const WizardChoices& choices) {
    return WizardForm::noteOf(field(id), choices, script::ScriptWizardGen::usable(choices).choices, {}).text;
}

} // namespace

TEST(WizardForm, everyAnswerHasOneFieldAndComesBackFromTheSettings) {
    const WizardChoices initial;
    WizardAnswers answers;
    answers.perCamera = true;
    answers.chosen = {"CAM1", "Wide"};
    answers.typed = {"Wide"};
    answers.shared = allDifferent();
    answers.own["Wide"] = initial;
    std::set<std::string> ids;
    for (const WizardForm::Field& each : WizardForm::fields()) {
        EXPECT_TRUE(ids.insert(each.id).second) << each.id;
        const bool differs = WizardForm::textOf(each, answers.shared) != WizardForm::textOf(each, initial) ||
                             WizardForm::ticked(each, answers.shared) != WizardForm::ticked(each, initial);
        EXPECT_TRUE(differs) << each.id << " is another field's answer";
    }
    EXPECT_EQ(ids.size(), 72U) << "the answers of WizardChoices but for the cameras";
    EXPECT_EQ(decodeWizardAnswers(encodeWizardAnswers(answers)), answers);
}

TEST(WizardForm, whatTheSettingsHoldAmissCostsThatAnswerOnly) {
    for (const char* text : {"", "nonsense", "[1]", "null", "{\"shared\": 7, \"chosen\": {}}"})
        EXPECT_EQ(decodeWizardAnswers(text), WizardAnswers()) << text;
    const WizardAnswers read = decodeWizardAnswers(
        R"({"chosen": ["A,B", 5, "A B", ""], "shared": {"ndStops": 1e300, "filter": 99, "coronaWeight": -1,
            "partialStepPct": "x", "diamondShutter": 3, "partials": 0, "coronaISO": 800}})");
    WizardChoices expected;
    expected.coronaISO = 800;
    EXPECT_EQ(read.shared, expected);
    EXPECT_EQ(read.chosen, std::vector<std::string>{"A B"}) << "a comma ends a name in a script";
}

TEST(WizardForm, readsWhatPeopleTypeAndPaste) {
    WizardChoices c;
    EXPECT_EQ(WizardForm::read(field("partialStepPct"), " 0,25 % ", c), "");
    EXPECT_EQ(c.partialStepPct, 0.25);
    EXPECT_EQ(WizardForm::read(field("coronaSetGap"), "2.5 s", c), "");
    EXPECT_EQ(c.coronaSetGap, 2.5);
    EXPECT_EQ(WizardForm::read(field("egressDrainGap"), "1s", c), "");
    EXPECT_EQ(c.egressDrainGap, 1);
    EXPECT_EQ(WizardForm::read(field("coronaISO"), "ISO 400", c), "");
    EXPECT_EQ(c.coronaISO, 400);
    EXPECT_EQ(WizardForm::read(field("coronaAperture"), "F/5,6", c), "");
    EXPECT_EQ(c.coronaAperture, "5.6");
    EXPECT_EQ(WizardForm::read(field("coronaFastest"), "1/2000 s", c), "");
    EXPECT_EQ(c.coronaFastest, "1/2000");
    EXPECT_EQ(WizardForm::read(field("partialBaseShutter"), "  ", c), "") << "empty: the filter's own";
    EXPECT_EQ(c.partialBaseShutter, "");
    EXPECT_NE(noteOf("partialBaseShutter", c).find("1/500"), std::string::npos);
}

TEST(WizardForm, whatCannotBeReadHasASentenceAndLeavesTheAnswer) {
    const WizardChoices initial;
    for (const WizardForm::Field& each : WizardForm::fields()) {
        if (each.kind == Kind::check || each.kind == Kind::choice)
            continue;
        for (const char* text : {"", " ", "abc", "1e999", "nan", "--3", "1/0", "12 34"}) {
            if (each.mayBeEmpty && std::string_view(text).find_first_not_of(' ') == std::string_view::npos)
                continue;
            WizardChoices c;
            const std::string fault = WizardForm::read(each, text, c);
            EXPECT_TRUE(fault.ends_with('.') && fault.find("Type") != fault.npos)
                << each.id << " \"" << text << "\": " << fault;
            EXPECT_EQ(c, initial) << each.id << " \"" << text << "\"";
        }
    }
    WizardChoices c;
    EXPECT_NE(WizardForm::read(field("coronaExposures"), "2.5", c), "") << "half a frame";
    EXPECT_EQ(c, initial);
}

TEST(WizardForm, whatTheScriptTakesInsteadIsSaidBesideTheField) {
    WizardChoices c;
    c.minShotGap = 100;
    c.coronaFastest = "1/450";
    c.coronaExposures = 99;
    c.diamondFrom = 2;
    c.diamondTo = 9;
    c.promFrom = 12;
    c.magnitudeCueStep = 3;
    c.wideFilterLeadSec = 600;
    c.filter = WizardChoices::Filter::none;
    EXPECT_EQ(noteOf("minShotGap", c), "100 is out of range: the script takes 60.");
    EXPECT_EQ(noteOf("coronaFastest", c), "1/450 is no standard shutter: the script takes 1/500.");
    EXPECT_EQ(noteOf("coronaExposures", c), "99 is out of range: the script takes 25.");
    EXPECT_EQ(noteOf("diamondTo", c), "From and to stand the wrong way round: the script takes 9 to 2 s.");
    EXPECT_EQ(noteOf("promTo", c), "From and to stand the wrong way round: the script takes 10 to 12 s.");
    EXPECT_NE(noteOf("magnitudeCueStep", c).find("takes 5 %"), std::string::npos);
    EXPECT_NE(noteOf("wideFilterLeadSec", c).find("takes 180 s"), std::string::npos);
    EXPECT_NE(noteOf("partials", c).find("left out"), std::string::npos);
    for (const WizardForm::Field& each : WizardForm::fields())
        EXPECT_FALSE(WizardForm::noteOf(each, {}, {}, {}).warning) << each.id << " of the initial answers";
}

TEST(WizardForm, fieldsWithoutAMeaningAreLeftOutWithTheReason) {
    const WizardChoices c;
    EXPECT_FALSE(WizardForm::shown(field("ndStops"), c, {}));
    EXPECT_TRUE(WizardForm::shown(field("ndStops"), {.filter = WizardChoices::Filter::nd}, {}));
    EXPECT_FALSE(WizardForm::shown(field("partialEVStep"), c, {})) << "a single frame is no bracket";
    EXPECT_FALSE(WizardForm::shown(field("beadsISO"), {.beads = false}, {}));
    const WizardForm::Place partial{.central = WizardForm::Central::none};
    const WizardForm::Place second{.firstPlan = false, .firstCamera = "CAM1"};
    for (const WizardForm::Field& each : WizardForm::fields()) {
        const bool ofTotality =
            each.section == WizardForm::Section::edges || each.section == WizardForm::Section::corona;
        EXPECT_FALSE(ofTotality && WizardForm::shown(each, c, partial)) << each.id;
        if (WizardForm::shown(each, c, {}) && !WizardForm::shown(each, c, partial)) {
            EXPECT_NE(WizardForm::reason(each.section, partial), "") << each.id;
        }
        if (WizardForm::shown(each, c, {}) && !WizardForm::shown(each, c, second)) {
            EXPECT_NE(WizardForm::reason(each.section, second).find("CAM1"), std::string::npos) << each.id;
        }
    }
}

TEST(WizardForm, arrowsStepThroughListsAndNumbers) {
    WizardChoices c;
    WizardForm::nudge(field("diamondShutter"), 1, c);
    EXPECT_EQ(c.diamondShutter, "1/320");
    c.coronaISO = 210;
    WizardForm::nudge(field("coronaISO"), -1, c);
    EXPECT_EQ(c.coronaISO, 160) << "a step from the nearest standard value";
    c.wholeStopISO = true;
    WizardForm::nudge(field("coronaISO"), 1, c);
    EXPECT_EQ(c.coronaISO, 400);
    WizardForm::nudge(field("partialBaseShutter"), 1, c);
    EXPECT_EQ(c.partialBaseShutter, "1/400") << "a step from what the filter gives";
    for (int i = 0; i < 7; ++i)
        WizardForm::nudge(field("beadsEvery"), 1, c);
    EXPECT_EQ(WizardForm::textOf(field("beadsEvery"), c), "1.2");
    for (int i = 0; i < 40; ++i) {
        WizardForm::nudge(field("beadsEvery"), -1, c);
        WizardForm::nudge(field("coronaExposures"), -1, c);
        WizardForm::nudge(field("filter"), 1, c);
    }
    EXPECT_EQ(c.beadsEvery, 0);
    EXPECT_EQ(c.coronaExposures, 1);
    EXPECT_EQ(c.filter, WizardChoices::Filter::none);
}
