// What the wizard's form does on each change of an answer: the script made and compiled, frames counted,
// exposures judged, remarks collected. A person should see it follow: 50 ms for three bodies.
#include "eclipse/Catalog.h"
#include "ui/wizard/WizardAnswers.h"
#include "ui/wizard/WizardPreview.h"

#include <benchmark/benchmark.h>

namespace {

using namespace zenka;

ui::WizardSite zaragoza() {
    ui::WizardSite site;
    site.eclipse = std::make_shared<const eclipse::Eclipse>(eclipse::Catalog::eclipse("2026-08-12"));
    site.observer = {41.65, -0.88, 200};
    site.tzId = "Europe/Madrid";
    site.label = "Zaragoza";
    site.seen = true;
    site.central = ui::WizardForm::Central::total;
    const auto circumstances = site.eclipse->localCircumstances(site.observer);
    site.contactTHours = script::contactTHours(circumstances);
    site.totalitySec = circumstances.totalitySeconds;
    return site;
}

/// All that costs: small steps, brackets, low-Sun compensation, horizon trim.
ui::WizardRequest threeBodies() {
    ui::WizardRequest request{.site = zaragoza()};
    for (const char* camera : {"CAM1", "CAM2", "CAM3"}) {
        request.plans.push_back({.camera = camera, .lowSunComp = true, .magnitudeCues = true});
        request.plans.back().partialBracket = 3;
        request.plans.back().dropBelowHorizon = true;
        request.bodies[camera] = {{.name = camera, .driver = "gphoto2"}}; // far too slow for it
    }
    request.plans[1].partialCadence = script::WizardChoices::PartialCadence::interval;
    request.plans[1].partialIntervalSec = 10;
    request.plans[2].partialStepPct = 0.2;
    return request;
}

void preview(benchmark::State& state) {
    const ui::WizardRequest request = threeBodies();
    int frames = 0;
    for (auto _ : state) {
        const ui::WizardPreview made = ui::wizardPreview(request);
        frames = made.frames;
        benchmark::DoNotOptimize(made);
    }
    state.counters["frames"] = frames;
}
BENCHMARK(preview)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly();

void keepingTheAnswers(benchmark::State& state) {
    ui::WizardAnswers answers{.perCamera = true, .chosen = {"CAM1", "CAM2", "CAM3"}};
    for (const std::string& camera : answers.chosen)
        answers.planOf(camera);
    for (auto _ : state) {
        std::string text = ui::encodeWizardAnswers(answers);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(keepingTheAnswers)->Unit(benchmark::kMicrosecond);

} // namespace
