// What an eclipse costs in an export for the web, which has 101 of them.

#include "eclipse/Catalog.h"
#include "geo/Bundled.h"
#include "webdata/DataFiles.h"

#include <benchmark/benchmark.h>

namespace {

using namespace zenka;

const eclipse::Eclipse& eclipse2034() {
    static const eclipse::Eclipse one = eclipse::Catalog::eclipse("2034-03-20");
    return one;
}

void path(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(webdata::centralLine(eclipse2034()));
}
BENCHMARK(path)->Unit(benchmark::kMillisecond);

void filesOfAnEclipse(benchmark::State& state) {
    const webdata::BigPlaces places(geo::bundledPlaces());
    for (auto _ : state)
        benchmark::DoNotOptimize(webdata::eclipseFiles(eclipse2034(), places));
}
BENCHMARK(filesOfAnEclipse)->Unit(benchmark::kMillisecond);

void landOfTheMap(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(webdata::fixedFiles());
}
BENCHMARK(landOfTheMap)->Unit(benchmark::kMillisecond);

} // namespace
