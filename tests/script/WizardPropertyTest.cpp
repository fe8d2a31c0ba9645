// What holds for every script that the wizard makes, whatever the answers: checked over random answers, some
// of them nonsense, at sites of all kinds.
#include "WizardSites.h"
#include "eclipse/EclipsePath.h"
#include "script/WizardCheck.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>
#include <random>

namespace zenka::script {
namespace {

using ScriptWizardGen::usable;

struct Place {
    const char* name;
    Site site;
    bool central = false;
    double totality = 0;
    bool total = false; ///< not annular

    Place(const char* placeName, const char* eclipse, eclipse::Observer observer)
        : name(placeName), site(eclipse, observer, "UTC"), central(site.context.contactTHours.contains("C2")),
          totality(totalitySeconds(site)),
          total(central && site.context.eclipse.geometry(site.contact("MAX") / 3600, observer).L2 < 0) {}
};

eclipse::Observer greatest(const char* eclipse) {
    const auto point = eclipse::greatestDurationPoint(eclipse::Catalog::eclipse(eclipse));
    return {point->lat, point->lon, 0};
}

/// Where totality lasts a few seconds.
eclipse::Observer edgeOfCarbondale() {
    const eclipse::Eclipse eclipse = eclipse::Catalog::eclipse("2024-04-08");
    eclipse::Observer observer{37.7273, -89.2168, 121};
    double inside = observer.lon;
    double outside = -92;
    for (int i = 0; i < 40; ++i) {
        observer.lon = (inside + outside) / 2;
        const double seconds = eclipse.localCircumstances(observer).totalitySeconds;
        if (seconds > 2 && seconds < 12)
            break;
        (seconds > 0 ? inside : outside) = observer.lon;
    }
    return observer;
}

/// Random answers: usual ones mostly, and in a part of the plans anything that a form can hold.
class Answers {
public:
    explicit Answers(unsigned seed) : random_(seed) {}

    WizardChoices next(bool nonsense) {
        nonsense_ = nonsense;
        WizardChoices c;
        c.camera = text({"CAM1", "Body two", "R5"}, {"", "a,b\nTAKEPIC", "\u2028", "  "});
        if (chance(0.2))
            c.cameras = {"CAM1", "CAM2"};
        c.filter = pick({WizardChoices::Filter::fullSolar, WizardChoices::Filter::thousandOaks,
                         WizardChoices::Filter::nd, WizardChoices::Filter::none});
        c.ndStops = whole(8, 24);
        c.partials = chance(0.7);
        c.partialStepPct = number(0.4, 5);
        c.contactFrames = chance(0.6);
        c.sunBaseline = chance(0.6);
        c.sunBaselineLeadSec = number(1, 300);
        c.partialBracket = chance(0.5) ? 1 : whole(1, 7);
        c.partialCadence =
            pick({WizardChoices::PartialCadence::magnitude, WizardChoices::PartialCadence::interval});
        c.partialIntervalSec = number(5, 300);
        c.partialEVStep = number(0.3, 2);
        c.partialBracketVar = var();
        c.partialBaseShutter = chance(0.7) ? "" : shutter();
        c.partialWeight = weight();
        c.lowSunComp = chance(0.4);
        c.lowSunKCoeff = number(0.05, 0.4);
        c.lowSunMinShutter = shutter();
        c.lowSunMaxISO = iso();
        c.lowSunTrade = pick({WizardChoices::LowSunTrade::fastShutter, WizardChoices::LowSunTrade::lowISO,
                              WizardChoices::LowSunTrade::balanced});
        c.lowSunTotality = chance(0.7);
        c.wholeStopISO = chance(0.3);
        c.diamondRings = chance(0.7);
        c.beads = chance(0.7);
        c.prominences = chance(0.7);
        c.earthshine = chance(0.7);
        c.lenrOn = chance(0.3);
        c.voiceCues = chance(0.5);
        c.magnitudeCues = chance(0.3);
        c.magnitudeCueStep = whole(1, 40);
        c.wideFilterCue = chance(0.3);
        c.wideFilterLeadSec = whole(1, 100);
        c.coronaFastest = shutter();
        c.coronaExposures = whole(1, 11);
        c.coronaEVStep = number(0.3, 2);
        c.coronaWeight = weight();
        c.coronaBracketVar = var();
        c.coronaSetGap = number(0, 10);
        c.egressDrainGap = number(0, 1);
        c.minShotGap = number(0.1, 2);
        c.minShotGapSame = number(0.1, 2);
        c.maxShutter = shutter();
        c.tracking = chance(0.4);
        edge(c.diamondShutter, c.diamondISO, c.diamondFrom, c.diamondTo, c.diamondEvery);
        edge(c.beadsShutter, c.beadsISO, c.beadsFrom, c.beadsTo, c.beadsEvery);
        edge(c.promShutter, c.promISO, c.promFrom, c.promTo, c.promEvery);
        for (std::string* aperture : {&c.partialAperture, &c.coronaAperture, &c.diamondAperture,
                                      &c.beadsAperture, &c.promAperture, &c.earthshineAperture})
            *aperture = text({"8.0", "5.6", "11", "4.0"}, {"", "f/8", "1e99", "-2", "8,0", "nan"});
        c.partialISO = iso();
        c.coronaISO = iso();
        c.earthshineShutter = shutter();
        c.earthshineISO = iso();
        c.earthshineBracket = whole(1, 4);
        c.earthshineEVStep = number(0.3, 2);
        c.earthshineWeight = weight();
        c.earthshineBracketVar = var();
        return c;
    }

    bool chance(double share) { return std::uniform_real_distribution<>(0, 1)(random_) < share; }

    template <class T>
    T pick(std::initializer_list<T> list) {
        return list.begin()[std::uniform_int_distribution<std::size_t>(0, list.size() - 1)(random_)];
    }

private:
    bool spoil() { return nonsense_ && chance(0.3); }

    double number(double lo, double hi) {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        if (spoil())
            return pick({0.0, -1.0, -0.0, 1e-9, 1e9, -1e300, 1e308, infinity, -infinity,
                         std::numeric_limits<double>::quiet_NaN()});
        return std::round(std::uniform_real_distribution<>(lo, hi)(random_) * 100) / 100;
    }
    int whole(int lo, int hi) {
        if (spoil())
            return pick({0, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min(), 96});
        return std::uniform_int_distribution(lo, hi)(random_);
    }
    int iso() {
        return spoil() ? pick({0, -5, std::numeric_limits<int>::max(), 1}) : pick({100, 200, 800, 3200});
    }
    std::string text(std::initializer_list<const char*> usual, std::initializer_list<const char*> odd) {
        return spoil() ? pick(odd) : pick(usual);
    }
    std::string shutter() {
        return text({"1/4000", "1/1000", "1/500", "1/60", "1/10", "1/4", "1", "2.5", "8"},
                    {"", " ", "fast", "1/0", "0", "-1", "1/3", "1e9", "inf", "BULB", "1/500,8\n#"});
    }
    void edge(std::string& shutterText, int& isoValue, double& from, double& to, double& every) {
        shutterText = shutter();
        isoValue = iso();
        from = number(0, 20);
        to = number(0, 20);
        every = number(0, 3);
    }
    BracketVar var() { return pick({BracketVar::shutter, BracketVar::iso, BracketVar::aperture}); }
    BracketWeight weight() {
        return pick({BracketWeight::center, BracketWeight::bottom, BracketWeight::top});
    }

    std::mt19937 random_;
    bool nonsense_ = false;
};

/// The part of the plan that a frame's note belongs to.
std::string partOf(const std::string& note) {
    for (const char* part : {"Diamond ring ingress", "Diamond ring egress", "Baily's beads ingress",
                             "Baily's beads egress", "Corona set", "Earthshine"})
        if (note.starts_with(part))
            return part;
    if (note.starts_with("Prominences"))
        return "Prominences"; // both sides stand within totality and must keep apart
    if (note.starts_with("Partial ingress") || note.starts_with("First contact") ||
        note.ends_with("before first contact)"))
        return "ingress";
    return note.starts_with("Partial egress") || note.find("ast contact") != note.npos ||
                   note.starts_with("Full Sun")
               ? "egress"
               : "?" + note;
}

/// The least pause that the answers ask for within a part.
double pauseOf(const std::string& part, const WizardChoices& c) {
    if (part == "Corona set" || part == "Earthshine")
        return std::max(c.minShotGap, 0.05);
    double every = 0;
    if (part.starts_with("Diamond"))
        every = c.diamondEvery;
    else if (part.starts_with("Baily"))
        every = c.beadsEvery;
    else if (part == "Prominences")
        every = c.promEvery;
    return std::max(every, c.minShotGapSame);
}

class Judge {
public:
    void judge(const Place& place, const std::vector<WizardChoices>& plans, bool hasTotality,
               const std::optional<ScriptWizardGen::HorizonCtx>& horizon) {
        const std::string text = ScriptWizardGen::build(plans, place.totality, hasTotality, horizon);
        if (++scripts % 8 == 0) {
            ASSERT_EQ(text, ScriptWizardGen::build(plans, place.totality, hasTotality, horizon));
        }
        const CompiledScript script = ZenkaScript::compile(text, place.site.context);
        for (const ScriptDiag& diag : script.diagnostics)
            ASSERT_TRUE(diag.severity != "error" && diag.message.find("unknown") == diag.message.npos)
                << diag.lineNo << ": " << diag.message << "\n"
                << text;
        if (script.captures.empty()) {
            const bool reason = text.find("omitted") != text.npos || text.find("# Nothing") != text.npos ||
                                text.find("skipped") != text.npos || !script.diagnostics.empty();
            ASSERT_TRUE(reason) << text;
        }
        const bool total = hasTotality && (!horizon || place.total);
        std::map<std::string, WizardChoices> choicesOf; // the first plan of a name counts
        for (const WizardChoices& plan : plans)
            for (const std::string& name : plan.targets())
                choicesOf.try_emplace(ScriptWizardGen::usableCamera(name), usable(plan).choices);
        std::map<std::string, std::map<std::string, const Capture*>> last;
        for (const Capture& frame : script.captures) {
            ASSERT_TRUE(choicesOf.contains(frame.camera)) << frame.camera << "\n" << text;
            const WizardChoices& c = choicesOf.at(frame.camera);
            const std::string part = partOf(frame.comment);
            ASSERT_TRUE(wanted(part, c, total)) << frame.comment << "\n" << text;
            shutterHolds(frame, part, c);
            if (horizon && horizon->drop) {
                ASSERT_GT(place.site.sunAltDeg(frame.offsetSec), 0) << frame.comment << "\n" << text;
            }
            if (part == "Corona set")
                insideTotality(frame, place, c);
            const Capture*& before = last[frame.camera][part];
            if (before)
                spacingHolds(*before, frame, part, c);
            before = &frame;
            ++frames;
            if (testing::Test::HasFatalFailure()) {
                std::cout << place.name << "\n" << text.substr(0, 6000) << "\n";
                return;
            }
        }
    }

    std::size_t scripts = 0;
    std::size_t frames = 0;
    double worstSpacing = 0; ///< by how much two frames come closer than asked for
    double worstMargin = 0;  ///< by how much a corona frame leaves its room

private:
    static bool wanted(const std::string& part, const WizardChoices& c, bool total) {
        if (part == "ingress" || part == "egress")
            return c.partials && c.filter != WizardChoices::Filter::none;
        if (part.starts_with("Diamond"))
            return total && c.diamondRings;
        if (part.starts_with("Baily"))
            return total && c.beads;
        if (part == "Prominences")
            return total && c.prominences;
        if (part == "Earthshine")
            return total && c.earthshine;
        return total && part == "Corona set";
    }

    static void shutterHolds(const Capture& frame, const std::string& part, const WizardChoices& c) {
        const auto rows = exposure::standardShutters();
        ASSERT_TRUE(std::any_of(rows.begin(), rows.end(), [&](std::string_view row) {
            return exposure::shutterSeconds(row) == frame.shutterSec;
        })) << frame.shutterSec;
        ASSERT_GT(frame.aperture, 0);
        ASSERT_GT(frame.iso, 0);
        if (!c.tracking && (part == "Corona set" || part == "Earthshine")) {
            ASSERT_LE(frame.shutterSec, exposure::shutterSeconds(c.maxShutter) * 1.001);
        }
    }

    void insideTotality(const Capture& frame, const Place& place, const WizardChoices& c) {
        const double c2 = place.site.contact("C2");
        const double c3 = place.site.contact("C3");
        // Sets stand around MAX, which is not quite the middle between the contacts.
        const double skew = std::abs(place.site.contact("MAX") - (c2 + c3) / 2);
        const double margin = ScriptWizardGen::coronaFit(c, place.totality, std::nullopt).endMargin - skew;
        const double out =
            std::max(c2 + margin - frame.offsetSec, frame.offsetSec + frame.shutterSec - (c3 - margin));
        worstMargin = std::max(worstMargin, out);
        ASSERT_LE(out, 0.1) << frame.comment;
    }

    void spacingHolds(const Capture& before, const Capture& frame, const std::string& part,
                      const WizardChoices& c) {
        const double busy = c.lenrOn && before.shutterSec > 1 ? 2 * before.shutterSec : before.shutterSec;
        const double least = std::max(busy + pauseOf(part, c), 0.1);
        const double close = least - (frame.offsetSec - before.offsetSec);
        worstSpacing = std::max(worstSpacing, close);
        ASSERT_LE(close, 0.1001) << before.comment << " line " << before.lineNo << ", " << frame.comment
                                 << " line " << frame.lineNo;
    }
};

TEST(WizardProperty, everyScriptKeepsItsPromises) {
    std::vector<std::unique_ptr<Place>> places;
    const auto add = [&](const char* name, const char* eclipse, eclipse::Observer observer) {
        places.push_back(std::make_unique<Place>(name, eclipse, observer));
    };
    add("total", "2024-04-08", {37.7273, -89.2168, 121});
    add("total, low Sun", "2026-08-12", {41.65, -0.88, 200});
    add("total, sets soon", "2026-08-12", {39.57, 2.65, 10});
    add("total, long", "2027-08-02", {25.69, 32.64, 80});
    add("total, at the edge", "2024-04-08", edgeOfCarbondale());
    add("annular", "2028-01-26", greatest("2028-01-26"));
    add("partial", "2026-08-12", {48.8566, 2.3522, 35});
    add("partial, sets within", "2026-08-12", {45.46, 9.19, 120});
    add("polar", "2026-08-12", {84, 20, 0});
    add("polar, partial", "2026-08-12", {89.9, 0, 0});
    add("partial, rises within", "2024-04-08", {20, -150, 0});
    add("none", "2024-04-08", {-33.87, 151.21, 20});
    for (const auto& place : places) {
        const std::string name = place->name;
        EXPECT_EQ(place->total, name.starts_with("total")) << name;
        EXPECT_EQ(place->central, place->total || name == "annular") << name;
    }

    Answers answers(20260812);
    Judge judge;
    constexpr int plans = 2400;
    for (int i = 0; i < plans; ++i) {
        const Place& place = *places[static_cast<std::size_t>(i) % places.size()];
        std::vector<WizardChoices> choices(answers.chance(0.2) ? 3 : 1);
        for (std::size_t body = 0; body < choices.size(); ++body) {
            choices[body] = answers.next(answers.chance(0.4));
            if (choices.size() > 1 && !choices[body].camera.empty())
                choices[body].camera += std::to_string(body);
        }
        const auto horizon =
            answers.chance(0.8) ? std::optional(horizonOf(place.site, answers.chance(0.6))) : std::nullopt;
        judge.judge(place, choices, place.central, horizon);
        if (HasFatalFailure()) {
            ADD_FAILURE() << "plan " << i << " at " << place.name;
            return;
        }
    }
    std::cout << judge.frames << " frames; closest under the asked pause " << judge.worstSpacing
              << " s of 0.1 s, furthest out of the margins " << judge.worstMargin << " s of 0.1 s\n";
}

} // namespace
} // namespace zenka::script
