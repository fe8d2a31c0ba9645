// What the wizard's preview does on each change of an answer: the script is made anew and compiled. A person
// should see it follow: 50 ms for three bodies.
#include "eclipse/Catalog.h"
#include "script/ScriptWizardGen.h"
#include "script/ZenkaScript.h"

#include <benchmark/benchmark.h>

#include <array>
#include <optional>

namespace {

using namespace zenka;

struct Zaragoza {
    eclipse::Eclipse eclipse = eclipse::Catalog::eclipse("2026-08-12");
    eclipse::Observer observer{41.65, -0.88, 200};
    eclipse::LocalCircumstances circumstances = eclipse.localCircumstances(observer);
    script::CompileContext context{eclipse, observer, script::contactTHours(circumstances), "Europe/Madrid"};
    std::optional<script::ScriptWizardGen::HorizonCtx> horizon{script::ScriptWizardGen::HorizonCtx{
        eclipse, observer.lat, observer.lon, observer.elev, context.contactTHours, true}};
};

/// All that costs: small steps, brackets, low-Sun compensation, horizon trim.
std::array<script::WizardChoices, 3> threeBodies() {
    std::array<script::WizardChoices, 3> plans;
    for (std::size_t body = 0; body < plans.size(); ++body) {
        plans[body].camera = "CAM" + std::to_string(body + 1);
        plans[body].lowSunComp = true;
        plans[body].magnitudeCues = true;
        plans[body].partialBracket = 3;
    }
    plans[1].partialCadence = script::WizardChoices::PartialCadence::interval;
    plans[1].partialIntervalSec = 10;
    plans[2].partialStepPct = 0.2;
    return plans;
}

void previewOfThreeBodies(benchmark::State& state) {
    const Zaragoza site;
    const auto plans = threeBodies();
    std::size_t frames = 0;
    for (auto _ : state) {
        const std::string text = script::ScriptWizardGen::build(plans, site.circumstances.totalitySeconds,
                                                                site.circumstances.isTotal, site.horizon);
        const script::CompiledScript script = script::ZenkaScript::compile(text, site.context);
        frames = script.captures.size();
        benchmark::DoNotOptimize(script);
    }
    state.counters["frames"] = static_cast<double>(frames);
}
BENCHMARK(previewOfThreeBodies)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly();

void makingTheTextAlone(benchmark::State& state) {
    const Zaragoza site;
    const auto plans = threeBodies();
    for (auto _ : state) {
        std::string text = script::ScriptWizardGen::build(plans, site.circumstances.totalitySeconds,
                                                          site.circumstances.isTotal, site.horizon);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(makingTheTextAlone)->Unit(benchmark::kMillisecond);

} // namespace
