#include "script/ZenkaScript.h"

#include "script/Compiler.h"
#include "script/FieldReader.h"
#include "script/Parser.h"
#include "script/Walker.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace zenka::script {

namespace {

/// Sorts by offsetSec, equals in the order they came, and numbers the result. Scripts mostly come in
/// order; where not, the order is found on the bare offsets, which are cheaper to move than the records.
template <typename Record>
void sortAndNumber(std::vector<Record>& records) {
    if (!std::ranges::is_sorted(records, {}, &Record::offsetSec)) {
        struct Rank {
            double offsetSec;
            std::size_t from;
        };
        std::vector<Rank> ranks;
        ranks.reserve(records.size());
        for (const Record& record : records)
            ranks.push_back({record.offsetSec, ranks.size()});
        std::ranges::stable_sort(ranks, {}, &Rank::offsetSec);
        std::vector<Record> sorted;
        sorted.reserve(records.size());
        for (const Rank& rank : ranks)
            sorted.push_back(std::move(records[rank.from]));
        records = std::move(sorted);
    }
    int seq = 0;
    for (Record& record : records)
        record.seq = ++seq;
}

} // namespace

std::map<std::string, double> contactTHours(const eclipse::LocalCircumstances& circumstances) {
    std::map<std::string, double> hours;
    for (const eclipse::ContactEvent& event : circumstances.events)
        hours.insert_or_assign(event.key, event.tHours);
    return hours;
}

CapturesByToken capturesByToken(const std::vector<Capture>& captures) {
    CapturesByToken byToken;
    for (const Capture& capture : captures)
        byToken[capture.camera].push_back(capture);
    return byToken;
}

CompiledScript compileWithin(const Limits& limits, std::string_view text, const CompileContext& context,
                             std::optional<double> varValue) {
    Diagnostics diagnostics(limits.diagnostics);
    const std::vector<Node> tree = parse(text, limits, diagnostics);
    Walker walker(context, limits, diagnostics);
    walker.walk(tree, varValue);
    CompiledScript script = walker.take();
    script.diagnostics = diagnostics.take();
    sortAndNumber(script.captures);
    sortAndNumber(script.audioCues);
    return script;
}

namespace ZenkaScript {

CompiledScript compile(std::string_view text, const CompileContext& context, std::optional<double> varValue) {
    return compileWithin({}, text, context, varValue);
}

std::optional<double> parseTimeMMSS(std::string_view text) {
    const FieldNumber seconds = readTime(text);
    return seconds.kind == FieldNumber::Kind::value ? std::optional(seconds.value) : std::nullopt;
}

Shutter parseShutter(std::string_view text) {
    return readShutter(text).value_or(Shutter{});
}

} // namespace ZenkaScript

} // namespace zenka::script
