// The fields of the wizard's form, in their order.
#include "ui/wizard/WizardForm.h"

#include <algorithm>

namespace zenka::ui::WizardForm {

namespace {

using C = Choices;

bool wantsPartials(const C& c) {
    return c.partials && c.filter != C::Filter::none;
}
bool byMagnitude(const C& c) {
    return wantsPartials(c) && c.partialCadence == C::PartialCadence::magnitude;
}
bool byInterval(const C& c) {
    return wantsPartials(c) && c.partialCadence == C::PartialCadence::interval;
}
bool bracketsPartials(const C& c) {
    return wantsPartials(c) && c.partialBracket != 1;
}
bool wantsDiamond(const C& c) {
    return c.diamondRings;
}
bool wantsBeads(const C& c) {
    return c.beads;
}
bool wantsProminences(const C& c) {
    return c.prominences;
}
bool wantsEdges(const C& c) {
    return c.diamondRings || c.beads || c.prominences;
}
bool bracketsCorona(const C& c) {
    return c.coronaExposures != 1;
}
bool wantsEarthshine(const C& c) {
    return c.earthshine;
}
bool bracketsEarthshine(const C& c) {
    return c.earthshine && c.earthshineBracket != 1;
}
bool wantsLowSun(const C& c) {
    return c.lowSunComp;
}

/// The table as one writes it down: a section, in it rows, in them fields with what is particular to them.
class Table {
public:
    Table& section(Section section, bool ofTotality = false) {
        section_ = section;
        ofTotality_ = ofTotality;
        return *this;
    }
    Table& row(const char* name) {
        row_ = name;
        return *this;
    }
    Table& check(const char* id, bool C::*member, const char* label) {
        row_ = "";
        return add(id, Kind::check, member, label);
    }
    Table& choice(const char* id, Member member, const char* label) {
        return add(id, Kind::choice, member, label);
    }
    Table& number(const char* id, double C::*member, const char* label, double step) {
        add(id, Kind::number, member, label);
        fields.back().step = step;
        return *this;
    }
    Table& whole(const char* id, int C::*member, const char* label) {
        return add(id, Kind::whole, member, label);
    }
    Table& shutter(const char* id, std::string C::*member, const char* label) {
        return add(id, Kind::shutter, member, label);
    }
    Table& aperture(const char* id, std::string C::*member, const char* label) {
        return add(id, Kind::aperture, member, label).before("f/");
    }
    Table& iso(const char* id, int C::*member, const char* label) {
        return add(id, Kind::iso, member, label).before("ISO");
    }

    Table& before(const char* words) {
        fields.back().before = words;
        return *this;
    }
    Table& unit(const char* words) {
        fields.back().unit = words;
        return *this;
    }
    Table& when(bool (*applies)(const C&)) {
        fields.back().applies = applies;
        return *this;
    }
    Table& mayBeEmpty() {
        fields.back().mayBeEmpty = true;
        return *this;
    }
    Table& ofScript() {
        fields.back().ofScript = true;
        return *this;
    }
    Table& ofTotality() {
        fields.back().ofTotality = true;
        return *this;
    }

    std::vector<Field> fields;

private:
    Table& add(const char* id, Kind kind, Member member, const char* label) {
        fields.push_back({.id = id,
                          .section = section_,
                          .kind = kind,
                          .member = member,
                          .label = label,
                          .row = row_,
                          .ofTotality = ofTotality_});
        row_ = nullptr;
        return *this;
    }

    Section section_ = Section::partials;
    const char* row_ = nullptr;
    bool ofTotality_ = false;
};

void addPartials(Table& table) {
    table.section(Section::partials)
        .row("Filter")
        .choice("filter", &C::filter, "Filter")
        .whole("ndStops", &C::ndStops, "ND filter")
        .unit("stops")
        .when([](const C& c) { return c.filter == C::Filter::nd; })
        .check("partials", &C::partials, "Photograph the partial phases")
        .row("Exposure")
        .shutter("partialBaseShutter", &C::partialBaseShutter, "Partial shutter")
        .mayBeEmpty()
        .when(wantsPartials)
        .aperture("partialAperture", &C::partialAperture, "Partial aperture")
        .when(wantsPartials)
        .iso("partialISO", &C::partialISO, "Partial ISO")
        .when(wantsPartials)
        .row("One set")
        .choice("partialCadence", &C::partialCadence, "Cadence of the partial phases")
        .when(wantsPartials)
        .number("partialStepPct", &C::partialStepPct, "Partial step", 0.1)
        .before("every")
        .unit("%")
        .when(byMagnitude)
        .number("partialIntervalSec", &C::partialIntervalSec, "Partial interval", 5)
        .before("every")
        .unit("s")
        .when(byInterval)
        .row("Frames in a set")
        .whole("partialBracket", &C::partialBracket, "Partial bracket")
        .when(wantsPartials)
        .number("partialEVStep", &C::partialEVStep, "Partial EV step", 0.5)
        .unit("EV apart")
        .when(bracketsPartials)
        .row("Bracket by")
        .choice("partialBracketVar", &C::partialBracketVar, "What moves in the partial bracket")
        .when(bracketsPartials)
        .choice("partialWeight", &C::partialWeight, "Place of the partial exposure in its bracket")
        .when(bracketsPartials)
        .check("contactFrames", &C::contactFrames, "Frames at first and last contact")
        .when(wantsPartials)
        .check("sunBaseline", &C::sunBaseline, "Frames of the whole Sun before C1 and after C4")
        .when(wantsPartials)
        .row("Lead")
        .number("sunBaselineLeadSec", &C::sunBaselineLeadSec, "Sun baseline lead", 10)
        .unit("s")
        .when([](const C& c) { return wantsPartials(c) && c.sunBaseline; });
}

void addEdges(Table& table) {
    table.section(Section::edges, true)
        .check("diamondRings", &C::diamondRings, "Diamond rings")
        .row("Exposure")
        .shutter("diamondShutter", &C::diamondShutter, "Diamond ring shutter")
        .when(wantsDiamond)
        .aperture("diamondAperture", &C::diamondAperture, "Diamond ring aperture")
        .when(wantsDiamond)
        .iso("diamondISO", &C::diamondISO, "Diamond ring ISO")
        .when(wantsDiamond)
        .row("Before C2, after C3")
        .number("diamondFrom", &C::diamondFrom, "Diamond ring from", 0.5)
        .when(wantsDiamond)
        .number("diamondTo", &C::diamondTo, "Diamond ring to", 0.5)
        .before("to")
        .unit("s")
        .when(wantsDiamond)
        .number("diamondEvery", &C::diamondEvery, "Diamond ring every", 0.1)
        .before("every")
        .unit("s")
        .when(wantsDiamond)
        .check("beads", &C::beads, "Baily's beads")
        .row("Exposure")
        .shutter("beadsShutter", &C::beadsShutter, "Baily's beads shutter")
        .when(wantsBeads)
        .aperture("beadsAperture", &C::beadsAperture, "Baily's beads aperture")
        .when(wantsBeads)
        .iso("beadsISO", &C::beadsISO, "Baily's beads ISO")
        .when(wantsBeads)
        .row("Before C2, after C3")
        .number("beadsFrom", &C::beadsFrom, "Baily's beads from", 0.5)
        .when(wantsBeads)
        .number("beadsTo", &C::beadsTo, "Baily's beads to", 0.5)
        .before("to")
        .unit("s")
        .when(wantsBeads)
        .number("beadsEvery", &C::beadsEvery, "Baily's beads every", 0.1)
        .before("every")
        .unit("s")
        .when(wantsBeads)
        .check("prominences", &C::prominences, "Prominences")
        .row("Exposure")
        .shutter("promShutter", &C::promShutter, "Prominences shutter")
        .when(wantsProminences)
        .aperture("promAperture", &C::promAperture, "Prominences aperture")
        .when(wantsProminences)
        .iso("promISO", &C::promISO, "Prominences ISO")
        .when(wantsProminences)
        .row("After C2, before C3")
        .number("promFrom", &C::promFrom, "Prominences from", 0.5)
        .when(wantsProminences)
        .number("promTo", &C::promTo, "Prominences to", 0.5)
        .before("to")
        .unit("s")
        .when(wantsProminences)
        .number("promEvery", &C::promEvery, "Prominences every", 0.1)
        .before("every")
        .unit("s")
        .when(wantsProminences)
        .row("Buffer drain after C3")
        .number("egressDrainGap", &C::egressDrainGap, "Egress drain gap", 0.1)
        .unit("s more between frames")
        .when(wantsEdges);
}

void addCorona(Table& table) {
    table.section(Section::corona, true)
        .row("Corona, fastest")
        .shutter("coronaFastest", &C::coronaFastest, "Corona fastest")
        .aperture("coronaAperture", &C::coronaAperture, "Corona aperture")
        .iso("coronaISO", &C::coronaISO, "Corona ISO")
        .row("Frames in a set")
        .whole("coronaExposures", &C::coronaExposures, "Corona exposures")
        .number("coronaEVStep", &C::coronaEVStep, "Corona EV step", 0.5)
        .unit("EV apart")
        .when(bracketsCorona)
        .row("Bracket by")
        .choice("coronaBracketVar", &C::coronaBracketVar, "What moves in the corona bracket")
        .when(bracketsCorona)
        .choice("coronaWeight", &C::coronaWeight, "Place of the corona exposure in its bracket")
        .when(bracketsCorona)
        .row("Between two sets")
        .number("coronaSetGap", &C::coronaSetGap, "Corona set gap", 0.5)
        .unit("s")
        .check("tracking", &C::tracking, "The mount tracks: frames may be long")
        .row("Longest shutter")
        .shutter("maxShutter", &C::maxShutter, "Longest shutter")
        .unit("s")
        .when([](const C& c) { return !c.tracking || c.lowSunComp; })
        .check("earthshine", &C::earthshine, "Earthshine")
        .row("Exposure")
        .shutter("earthshineShutter", &C::earthshineShutter, "Earthshine shutter")
        .when(wantsEarthshine)
        .aperture("earthshineAperture", &C::earthshineAperture, "Earthshine aperture")
        .when(wantsEarthshine)
        .iso("earthshineISO", &C::earthshineISO, "Earthshine ISO")
        .when(wantsEarthshine)
        .row("Frames")
        .whole("earthshineBracket", &C::earthshineBracket, "Earthshine bracket")
        .when(wantsEarthshine)
        .number("earthshineEVStep", &C::earthshineEVStep, "Earthshine EV step", 0.5)
        .unit("EV apart")
        .when(bracketsEarthshine)
        .row("Bracket by")
        .choice("earthshineBracketVar", &C::earthshineBracketVar, "What moves in the earthshine bracket")
        .when(bracketsEarthshine)
        .choice("earthshineWeight", &C::earthshineWeight, "Place of the earthshine exposure in its bracket")
        .when(bracketsEarthshine);
}

void addCues(Table& table) {
    table.section(Section::cues)
        .check("voiceCues", &C::voiceCues, "Speak around totality, with filters off and on")
        .ofScript()
        .ofTotality()
        .check("magnitudeCues", &C::magnitudeCues, "Speak how much of the Sun is covered")
        .ofScript()
        .row("At each")
        .whole("magnitudeCueStep", &C::magnitudeCueStep, "Step of the spoken percents")
        .unit("%")
        .ofScript()
        .when([](const C& c) { return c.magnitudeCues; })
        .check("wideFilterCue", &C::wideFilterCue, "Remind of the wide-angle filters")
        .ofScript()
        .ofTotality()
        .row("Lead before C2")
        .whole("wideFilterLeadSec", &C::wideFilterLeadSec, "Lead of the wide-angle reminder")
        .unit("s")
        .ofScript()
        .ofTotality()
        .when([](const C& c) { return c.wideFilterCue; });
}

void addLowSun(Table& table) {
    table.section(Section::lowSun)
        .check("dropBelowHorizon", &C::dropBelowHorizon, "Leave out frames with the Sun below the horizon")
        .ofScript()
        .check("lowSunComp", &C::lowSunComp, "Lengthen exposures as the Sun sinks")
        .row("Extinction")
        .number("lowSunKCoeff", &C::lowSunKCoeff, "Extinction k", 0.01)
        .unit("magnitudes per airmass")
        .when(wantsLowSun)
        .row("Change first")
        .choice("lowSunTrade", &C::lowSunTrade, "What low-Sun compensation changes first")
        .when(wantsLowSun)
        .row("No further than")
        .shutter("lowSunMinShutter", &C::lowSunMinShutter, "Low-Sun shutter")
        .unit("s")
        .when(wantsLowSun)
        .iso("lowSunMaxISO", &C::lowSunMaxISO, "Low-Sun ISO")
        .when(wantsLowSun)
        .check("lowSunTotality", &C::lowSunTotality, "Lengthen totality as well")
        .ofTotality()
        .when(wantsLowSun);
}

void addSpacing(Table& table) {
    table.section(Section::spacing)
        .row("Spacing")
        .number("minShotGap", &C::minShotGap, "Spacing", 0.1)
        .unit("s where a setting changes")
        .row("Equal frames")
        .number("minShotGapSame", &C::minShotGapSame, "Spacing of equal frames", 0.1)
        .unit("s where none does")
        .check("lenrOn", &C::lenrOn, "Long-exposure noise reduction is on in the bodies")
        .check("wholeStopISO", &C::wholeStopISO, "Whole stops of ISO only");
}

const std::vector<Field>& table() {
    static const std::vector<Field> made = [] {
        Table table;
        addPartials(table);
        addEdges(table);
        addCorona(table);
        addCues(table);
        addLowSun(table);
        addSpacing(table);
        return std::move(table.fields);
    }();
    return made;
}

} // namespace

std::span<const Field> fields() {
    return table();
}

const Field* fieldOf(std::string_view id) {
    const auto found = std::ranges::find_if(table(), [id](const Field& field) { return id == field.id; });
    return found == table().end() ? nullptr : &*found;
}

const char* title(Section section) {
    switch (section) {
    case Section::partials: return "Filter and partial phases";
    case Section::edges: return "Edges of totality";
    case Section::corona: return "Corona and earthshine";
    case Section::cues: return "Spoken cues";
    case Section::lowSun: return "Horizon and low Sun";
    case Section::spacing: return "Spacing and bodies";
    }
    return "";
}

} // namespace zenka::ui::WizardForm
