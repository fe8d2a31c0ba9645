#include "cli/CompileFile.h"

#include "base/CivilTime.h"
#include "base/Text.h"
#include "cli/Carbondale.h"
#include "cli/Print.h"
#include "exposure/ExposureScales.h"
#include "platform/LinuxFiles.h"

#include <absl/strings/str_format.h>

#include <algorithm>

namespace zenka::cli {

namespace {

void printCapture(const script::Capture& capture) {
    const base::Instant at =
        testEclipse().baseTDT() + base::Seconds{capture.offsetSec} - base::Seconds{testEclipse().rec.deltaT};
    printLine(absl::StrFormat("   #%-4d %s  %s  ISO%-4d f/%g %s  : %s", capture.seq,
                              base::formatTime("%H:%M:%E1S", at, absl::UTCTimeZone()), capture.camera,
                              capture.iso, capture.aperture,
                              capture.bulb ? "BULB" : exposure::shutterLabel(capture.shutterSec),
                              capture.comment));
}

} // namespace

void compileFile(const std::string& path) {
    const auto bytes = platform::LinuxFiles().read(path);
    const auto text = bytes ? base::utf8Text(*bytes) : std::nullopt;
    if (!text) {
        printLine("cannot read " + path);
        return;
    }
    const script::CompiledScript compiled = script::ZenkaScript::compile(*text, carbondaleContext());
    const auto& captures = compiled.captures;
    printLine("Compiled " + path);
    printLine(absl::StrFormat("  %d captures · cameras=%s · %d diagnostics", captures.size(),
                              base::arrayText(compiled.cameras), compiled.diagnostics.size()));
    printLine("  first 5 and last 3 captures (absolute UTC at Carbondale):");
    const std::size_t head = std::min<std::size_t>(5, captures.size());
    const std::size_t tail = std::min<std::size_t>(3, captures.size());
    std::for_each(captures.begin(), captures.begin() + static_cast<std::ptrdiff_t>(head), printCapture);
    std::for_each(captures.end() - static_cast<std::ptrdiff_t>(tail), captures.end(), printCapture);
    const std::size_t shown = std::min<std::size_t>(5, compiled.diagnostics.size());
    for (std::size_t i = 0; i < shown; ++i) {
        const script::ScriptDiag& diag = compiled.diagnostics[i];
        printLine(absl::StrFormat("   L%d %s: %s", diag.lineNo, diag.severity, diag.message));
    }
}

} // namespace zenka::cli
