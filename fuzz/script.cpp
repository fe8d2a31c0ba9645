// Any text compiles, and what comes out keeps what the run engine relies on.
#include "Check.h"
#include "eclipse/Catalog.h"
#include "script/Compiler.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

using namespace zenka;

struct Zaragoza {
    eclipse::Eclipse eclipse = eclipse::Catalog::eclipse("2026-08-12");
    eclipse::Observer observer{41.65, -0.88, 200};
    script::CompileContext context{
        eclipse, observer, script::contactTHours(eclipse.localCircumstances(observer)), "Europe/Madrid"};
};

template <typename Record>
void checkSorted(const std::vector<Record>& records) {
    double before = -script::furthestSec;
    int seq = 0;
    for (const Record& record : records) {
        check(std::isfinite(record.offsetSec) && record.offsetSec >= before);
        check(record.seq == ++seq && record.lineNo >= 1 && !record.refLabel.empty());
        before = record.offsetSec;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Zaragoza site;
    // The kinds of limit are tried with small numbers, which keeps a round short.
    static const script::Limits limits{.frames = 2000, .steps = 10'000, .diagnostics = 500, .nesting = 8};
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const script::CompiledScript script = script::compileWithin(limits, text, site.context);
    checkSorted(script.captures);
    checkSorted(script.audioCues);
    for (const script::Capture& capture : script.captures)
        check(std::isfinite(capture.shutterSec) && std::isfinite(capture.aperture) &&
              std::isfinite(capture.expComp));
    for (const script::ScriptDiag& diag : script.diagnostics)
        check(diag.lineNo >= 1 && !diag.message.empty());
    check(script.diagnostics.size() <= limits.diagnostics + 1);
    return 0;
}
