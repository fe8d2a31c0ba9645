// Three hours of eclipse with four simulated bodies and 2,000 captures on the virtual clock.

#include "support/VirtualRig.h"

#include <benchmark/benchmark.h>

namespace {

void threeHours(benchmark::State& state) {
    for (auto unused : state) {
        (void)unused;
        zenka::test::VirtualRig rig;
        std::string script;
        for (int i = 0; i < 500; ++i) {
            for (int camera = 1; camera <= 4; ++camera)
                script += rig.frameAt(i * 21.6, "CAM" + std::to_string(camera));
        }
        for (int camera = 1; camera <= 4; ++camera)
            rig.model.roster().setLabel(*rig.model.roster().addPlanningCamera("Generic PTP"),
                                        "CAM" + std::to_string(camera));
        rig.load(script);
        rig.playFrom(-30);
        rig.run(3 * 3600 + 60);
        if (rig.model.transport().playing().get())
            state.SkipWithError("the run did not end");
    }
}

BENCHMARK(threeHours)->Unit(benchmark::kMillisecond);

} // namespace
