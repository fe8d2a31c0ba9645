#include "cli/Validate.h"

#include "base/CivilTime.h"
#include "base/Text.h"
#include "cli/Carbondale.h"
#include "cli/Print.h"

#include <absl/strings/str_format.h>

#include <array>

namespace zenka::cli {

namespace {

struct ReferenceSite {
    const char* name;
    eclipse::Observer observer;
    const char* c2; // UT
    const char* c3; // UT
};

constexpr std::array<ReferenceSite, 3> referenceSites{{
    {"Dallas, TX", {.lat = 32.7767, .lon = -96.797, .elev = 131}, "18:40:43", "18:44:31"},
    {"Carbondale, IL", {.lat = 37.7273, .lon = -89.2168, .elev = 121}, "18:59:25", "19:03:33"},
    {"Cleveland, OH", {.lat = 41.4993, .lon = -81.6944, .elev = 199}, "19:13:46", "19:17:36"},
}};

constexpr char testScript[] =
    "FOR,(VAR),0.1,0.1,99.8\n"
    "TAKEPIC,MAGPRE (VAR),+,00:00.0,G9M2,1/500,2.8,100,0.000,RAW,None,N,Partial timelapse\n"
    "ENDFOR\n"
    "TAKEPIC,C2,-,00:01.5,G9M2,1/4000,8.0,200,0.000,RAW,None,N,Baily's beads\n"
    "AT_INVALID";

std::string utcTime(base::Instant instant) {
    return base::formatTime("%H:%M:%S", instant, absl::UTCTimeZone());
}

void validateSite(const ReferenceSite& site) {
    const eclipse::LocalCircumstances circ = testEclipse().localCircumstances(site.observer);
    printLine(site.name);
    printLine(absl::StrFormat("  total=%s mag=%.4f obsc=%.3f totality=%.1fs", circ.isTotal ? "true" : "false",
                              circ.maxMagnitude, circ.maxObscuration, circ.totalitySeconds));
    const auto* c2 = circ.event("C2");
    const auto* c3 = circ.event("C3");
    if (c2 && c3) {
        printLine(absl::StrFormat("  C2 %s UT (ref %s)  alt %d° az %d°", utcTime(c2->utc), site.c2,
                                  static_cast<int>(c2->sunAltDeg), static_cast<int>(c2->sunAzDeg)));
        printLine(absl::StrFormat("  C3 %s UT (ref %s)", utcTime(c3->utc), site.c3));
    }
    if (circ.sunriseUTC && circ.sunsetUTC)
        printLine("  sunrise " + utcTime(*circ.sunriseUTC) + " UT  sunset " + utcTime(*circ.sunsetUTC) +
                  " UT");
    printLine("");
}

} // namespace

void runValidation() {
    printLine("Validating: " + testEclipse().rec.name);
    printLine("");
    for (const ReferenceSite& site : referenceSites)
        validateSite(site);

    const script::CompiledScript compiled = script::ZenkaScript::compile(testScript, carbondaleContext());
    printLine(absl::StrFormat("Script compile: %d captures, %d diagnostics, cameras=%s",
                              compiled.captures.size(), compiled.diagnostics.size(),
                              base::arrayText(compiled.cameras)));
    if (!compiled.captures.empty()) {
        const script::Capture& first = compiled.captures.front();
        const script::Capture& last = compiled.captures.back();
        printLine(absl::StrFormat("  first off=%.1fs (%s), last off=%.1fs (%s)", first.offsetSec,
                                  first.refLabel, last.offsetSec, last.refLabel));
    }
}

} // namespace zenka::cli
