// How long it takes to say what will go wrong with a long script. Wanted: 60 ms for 20,000 frames on four
// bodies, of which some thousands are too close together.
#include "eclipse/Catalog.h"
#include "rig/checks/ScriptIssues.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

using namespace zenka;

void twentyThousandFramesOnFourBodies(benchmark::State& state) {
    const auto eclipse = std::make_shared<eclipse::Eclipse>(eclipse::Catalog::eclipse("2026-08-12"));
    const eclipse::Observer observer{41.65, -0.88, 200};
    const auto contacts = script::contactTHours(eclipse->localCircumstances(observer));
    std::string text;
    for (int body = 1; body <= 4; ++body)
        text += "FOR,(INTERVALOMETER),0." + std::to_string(body) +
                ",1,5000\nTAKEPIC,C1,+,(INTERVALOMETER),CAM" + std::to_string(body) +
                ",1/500,8.0,100,0.000,RAW,None,N,Corona set 1\nENDFOR\n";
    const auto script = script::ZenkaScript::compile(
        text, {.eclipse = *eclipse, .observer = observer, .contactTHours = contacts, .tzId = "UTC"});
    const auto byToken = script::capturesByToken(script.captures);
    rig::IssueContext context{
        .eclipse = eclipse, .observer = observer, .contactTHours = contacts, .siteLabel = "Zaragoza"};
    context.bodies["CAM1"] = {{.name = "CAM1", .driver = "gphoto2"}}; // every frame is one too close
    context.bodies["CAM2"] = {{.name = "CAM2", .driver = "CrSDK", .burstDepth = {{20, 0.9}}}};
    context.bodies["CAM3"] = {{.name = "CAM3", .driver = "LumixPTP", .catalogFloorSec = 0.18}};
    std::size_t issues = 0;
    for (auto _ : state) {
        const auto found = rig::computeIssues(context, script.captures, byToken);
        issues = found.size();
        benchmark::DoNotOptimize(found);
    }
    state.counters["frames"] = static_cast<double>(script.captures.size());
    state.counters["issues"] = static_cast<double>(issues);
}
BENCHMARK(twentyThousandFramesOnFourBodies)->Unit(benchmark::kMillisecond);

} // namespace
