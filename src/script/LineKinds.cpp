#include "script/LineKinds.h"

#include "base/Text.h"
#include "exposure/ExposureComp.h"
#include "script/FieldReader.h"
#include "script/Labels.h"

#include <absl/strings/str_format.h>

#include <algorithm>

namespace zenka::script {

namespace {

// Where the fields of a timed line stand.
constexpr std::size_t cameraField = 4, shutterField = 5, apertureField = 6, isoField = 7, compField = 8,
                      formatField = 9, incrementField = 11, noteField = 12;
constexpr std::size_t soundField = 4, wordsField = 12;
constexpr std::size_t rampCountField = 12, rampStepField = 13, rampNoteField = 14;
constexpr std::size_t leastTakeFields = 5, leastCueFields = 4;

constexpr std::string_view lineSkipped = "line skipped";

/// Takes the reference out of the fields, mending the slip of a magnitude in a field of its own:
/// MAGPRE,50,+,00:10 reads as MAGPRE 50,+,00:10.
std::string takeReference(Fields& fields) {
    if (fields.size() < 2)
        return {};
    std::string reference(fields[1]);
    const bool alone =
        base::equalIgnoringCase(reference, "MAGPRE") || base::equalIgnoringCase(reference, "MAGPOST");
    if (alone && fields.size() >= 4 && fields[2] != "+" && fields[2] != "-") {
        reference += ' ';
        reference += fields[2];
        fields.erase(fields.begin() + 2);
    }
    return reference;
}

Moment readMoment(std::string reference, const Fields& fields, FieldReader& reader) {
    Moment moment;
    moment.reference = std::move(reference);
    moment.hasVar = moment.reference.find(varMark) != std::string::npos;
    moment.negative = fields[2] == "-";
    moment.timeSec = reader.time(3);
    if (!moment.hasVar)
        moment.label = makeLabel(moment, std::nullopt);
    return moment;
}

std::string_view trimmedOf(std::string_view text, std::string_view unwanted) {
    const auto first = text.find_first_not_of(unwanted);
    return first == text.npos ? std::string_view{}
                              : text.substr(first, text.find_last_not_of(unwanted) - first + 1);
}

/// "2_Minutes.wav" says "2 Minutes".
std::string spokenFileName(std::string_view file) {
    constexpr std::string_view ending = ".wav";
    std::string text;
    while (!file.empty()) {
        if (base::equalIgnoringCase(file.substr(0, ending.size()), ending)) {
            file.remove_prefix(ending.size());
            continue;
        }
        text += file.front() == '_' ? ' ' : file.front();
        file.remove_prefix(1);
    }
    return text;
}

/// What PLAY and COMMAND lines share. Their last part is drawn from the fields as they are once the
/// reference is out.
std::optional<CueLine> readCue(Fields& fields) {
    std::string reference = takeReference(fields);
    if (fields.size() < leastCueFields)
        return std::nullopt;
    FieldReader reader(fields, lineSkipped);
    CueLine cue;
    cue.moment = readMoment(std::move(reference), fields, reader);
    cue.fault = reader.fault();
    cue.soundFile = reader.text(soundField, "");
    return cue;
}

} // namespace

TakeLine readTake(Fields fields, Series series) {
    TakeLine line;
    line.command = base::uppered(fields.front());
    line.series = series;
    std::string reference = takeReference(fields);
    line.complete = fields.size() >= leastTakeFields;
    if (!line.complete)
        return line;

    const bool ramp = series == Series::rampUp || series == Series::rampDown || series == Series::rampUpDown;
    FieldReader reader(fields, lineSkipped);
    line.moment = readMoment(std::move(reference), fields, reader);
    line.camera = fields[cameraField];
    line.shutter = reader.shutter(shutterField, "1/500");
    line.aperture = reader.numberOrAuto(apertureField, "aperture", 8.0);
    line.iso = reader.wholeOrAuto(isoField, "ISO", 200);
    if (series == Series::burst)
        line.count = reader.whole(compField, "burst count", 1);
    else if (series != Series::none)
        line.expComp = reader.number(compField, "compensation", 0);
    if (ramp) {
        line.count = reader.whole(rampCountField, "ramp count", 1);
        line.rampStep = reader.number(rampStepField, "ramp step", 1);
    }
    line.count = std::max(line.count, 1);
    line.format = reader.text(formatField, "RAW");
    line.forceFullExposure = base::equalIgnoringCase(reader.text(incrementField, ""), "N");
    line.note = joinedTail(fields, ramp ? rampNoteField : noteField);
    line.fault = reader.fault();
    return line;
}

BracketLine readBracket(const Fields& fields) {
    FieldReader reader(fields, lineSkipped);
    BracketLine line;
    line.frames = std::max(reader.whole(1, "bracket count", 3), 1);
    const std::string_view written = reader.text(2, "1.0EV");
    const std::string stops = base::replacedAll(base::uppered(written), "EV", "");
    line.step = reader.numberIn(stops, written, "bracket step", 1);
    if (line.step == 0)
        line.step = 1;
    line.fault = reader.fault();
    return line;
}

std::optional<CueLine> readPlay(Fields fields) {
    std::optional<CueLine> cue = readCue(fields);
    if (!cue)
        return cue;
    const std::string tail = joinedTail(fields, wordsField);
    const std::string_view words = trimmedOf(tail, " '\"!");
    cue->text =
        words.empty() || words == cue->soundFile ? spokenFileName(cue->soundFile) : std::string(words);
    return cue;
}

std::optional<CueLine> readCommand(Fields fields) {
    std::optional<CueLine> cue = readCue(fields);
    if (!cue)
        return cue;
    cue->soundFile = {};
    const std::string pair = joinedTail(fields, wordsField);
    const std::string_view whole = pair;
    const auto cut = whole.find(';');
    const std::string_view label = base::trimmed(whole.substr(0, cut));
    const std::string_view command = cut == whole.npos ? "" : base::trimmed(whole.substr(cut + 1));
    constexpr std::string_view say = "say ";
    if (command.empty()) {
        cue->silent = true;
    } else if (base::equalIgnoringCase(command.substr(0, say.size()), say)) {
        cue->text = trimmedOf(command.substr(say.size()), " '\"");
    } else {
        cue->shell = command;
        cue->text = label.empty() ? command : label;
    }
    return cue;
}

CamsetLine readCamset(const Fields& fields) {
    CamsetLine line;
    line.camera = fields[1];
    line.pairs = exposure::ExposureComp::parseCamsetPairs({fields.begin() + 2, fields.end()});
    if (line.pairs.empty())
        line.warnings.push_back(absl::StrFormat("CAMSET for %s has no key=value pairs", line.camera));
    for (const auto& [key, value] : line.pairs)
        if ((key == "gap_same" || key == "gap_change") && !base::readNumber(value))
            line.warnings.push_back(
                absl::StrFormat("CAMSET %s: %s should be seconds, got '%s'", line.camera, key, value));
    return line;
}

Loop readFor(const Fields& fields) {
    FieldReader reader(fields, "loop skipped");
    const std::string type = base::uppered(reader.text(1, ""));
    Loop loop;
    if (type.find("INTERVALOMETER") != type.npos) {
        loop.interval = true;
        loop.start = reader.number(2, "FOR start", 0);
        loop.step = reader.number(3, "FOR interval", 0);
        loop.count = reader.whole(4, "FOR count", 1);
        loop.fault = reader.fault();
    } else if (type.find("VAR") != type.npos) {
        loop.start = reader.number(2, "FOR start", 0);
        loop.step = reader.number(3, "FOR step", 0);
        loop.end = reader.number(4, "FOR end", 0);
        loop.fault = reader.fault();
    } else {
        loop.fault = absl::StrFormat("unknown FOR type '%s'", type);
    }
    return loop;
}

} // namespace zenka::script
