// How long a compile takes. It runs on every edit of the script, so it has to stay under what a person
// notices while typing.
#include "eclipse/Catalog.h"
#include "script/ZenkaScript.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace zenka;

struct Carbondale {
    eclipse::Eclipse eclipse = eclipse::Catalog::eclipse("2024-04-08");
    eclipse::Observer observer{37.7273, -89.2168, 121};
    script::CompileContext context{eclipse, observer,
                                   script::contactTHours(eclipse.localCircumstances(observer)), "UTC"};
};

void compile(benchmark::State& state, const std::string& text) {
    static const Carbondale site;
    std::size_t frames = 0;
    for (auto _ : state) {
        const script::CompiledScript script = script::ZenkaScript::compile(text, site.context);
        frames = script.captures.size();
        benchmark::DoNotOptimize(script);
    }
    state.counters["frames"] = static_cast<double>(frames);
}

/// A thousand frames by magnitude, each with a search of its own.
void partialsByMagnitude(benchmark::State& state) {
    compile(state, "FOR,(VAR),0.1,0.1,99.8\n"
                   "TAKEPIC,MAGPRE (VAR),+,00:00.0,G9M2,1/500,2.8,100,0.000,RAW,None,N,Partial timelapse\n"
                   "ENDFOR\n");
}
BENCHMARK(partialsByMagnitude)->Unit(benchmark::kMillisecond);

void twoLinesInTwentyThousandRounds(benchmark::State& state) {
    compile(state, "FOR,(INTERVALOMETER),0,0.5,20000\n"
                   "TAKEPIC,C1,+,00:00.0,CAM1,1/500,8.0,100,0.000,RAW,None,N,Partial C1-C2\n"
                   "TAKEPIC,C1,+,00:00.1,CAM2,1/500,8.0,100,0.000,RAW,None,N,Partial C1-C2\n"
                   "ENDFOR\n");
}
BENCHMARK(twoLinesInTwentyThousandRounds)->Unit(benchmark::kMillisecond);

void twoBodiesByMagnitudeInTwentyThousandRounds(benchmark::State& state) {
    compile(state, "FOR,(VAR),0.004,0.004,80\n"
                   "TAKEPIC,MAGPRE (VAR),+,00:00.0,CAM1,1/500,8.0,100,0.000,RAW,None,N,Partial C1-C2\n"
                   "TAKEPIC,MAGPRE (VAR),+,00:00.1,CAM2,1/500,8.0,100,0.000,RAW,None,N,Partial C1-C2\n"
                   "ENDFOR\n");
}
BENCHMARK(twoBodiesByMagnitudeInTwentyThousandRounds)->Unit(benchmark::kMillisecond);

/// A slip of the pen: what the limits leave of it.
void runawayLoops(benchmark::State& state) {
    compile(state, "FOR,(VAR),0.004,0.004,80\n"
                   "FOR,(INTERVALOMETER),0,0.5,20000\n"
                   "TAKEPIC,MAGPRE (VAR),+,00:00.0,CAM1,1/500,8.0,100,0.000,RAW,None,N,Partial C1-C2\n"
                   "ENDFOR\n"
                   "ENDFOR\n");
}
BENCHMARK(runawayLoops)->Unit(benchmark::kMillisecond);

} // namespace
