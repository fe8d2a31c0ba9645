#include "../tests/eclipse/FullWalk.h"
#include "eclipse/Catalog.h"
#include "eclipse/EclipsePath.h"
#include "eclipse/SkyCurve.h"

#include <benchmark/benchmark.h>

namespace {

using namespace zenka::eclipse;

const Observer carbondale{.lat = 37.7273, .lon = -89.2168, .elev = 121};
const Observer outsideThePath{.lat = 52.52, .lon = 13.40, .elev = 34};

const Eclipse& eclipse2024() {
    static const Eclipse eclipse = Catalog::eclipse("2024-04-08");
    return eclipse;
}

void geometry(benchmark::State& state) {
    double t = -1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(eclipse2024().geometry(t, carbondale));
        t += 1e-9;
    }
}
BENCHMARK(geometry);

void localCircumstances(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(eclipse2024().localCircumstances(carbondale));
    }
}
BENCHMARK(localCircumstances)->Unit(benchmark::kMicrosecond);

void localCircumstancesWithNoEclipse(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(eclipse2024().localCircumstances(outsideThePath));
    }
}
BENCHMARK(localCircumstancesWithNoEclipse)->Unit(benchmark::kMicrosecond);

void walkOverTheWholeGrid(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(testing::fullWalk(eclipse2024(), carbondale));
    }
}
BENCHMARK(walkOverTheWholeGrid)->Unit(benchmark::kMicrosecond);

void curve(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(sampleCurve(eclipse2024(), carbondale, -1, 1.5));
    }
}
BENCHMARK(curve)->Unit(benchmark::kMicrosecond);

void pathInStepsOfSeconds(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(tracePath(eclipse2024(), static_cast<double>(state.range(0))));
    }
}
BENCHMARK(pathInStepsOfSeconds)->Arg(600)->Arg(60)->Unit(benchmark::kMillisecond);

void greatestDuration(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(greatestDurationPoint(eclipse2024()));
    }
}
BENCHMARK(greatestDuration)->Unit(benchmark::kMillisecond);

void greatestDurationOfTheCatalogue(benchmark::State& state) {
    for (auto _ : state) {
        for (const EclipseRecord& rec : Catalog::all()) {
            benchmark::DoNotOptimize(greatestDurationPoint(Eclipse(rec)));
        }
    }
}
BENCHMARK(greatestDurationOfTheCatalogue)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace
