// What one paint of the timeline costs on the software path, at the width of the large window.

#include "support/VirtualRig.h"
#include "ui/timeline/TimelinePainter.h"

#include <QGuiApplication>
#include <QImage>
#include <absl/strings/str_format.h>
#include <benchmark/benchmark.h>

using namespace zenka;

namespace {

/// Four bodies with 5,000 frames each over a whole eclipse, half of them fired.
struct BusyRun {
    test::VirtualRig rig;
    ui::Theme theme{rig.machine.settings, nullptr};
    std::unique_ptr<ui::TimelineView> view;

    BusyRun() {
        std::string script;
        for (int body = 1; body <= 4; ++body) {
            rig.addBody(absl::StrFormat("CAM%d", body));
            script +=
                absl::StrFormat("FOR,(INTERVALOMETER),0,1.3,5000\n"
                                "TAKEPIC,C1,+,%d.1,CAM%d,1/500,8.0,200,0.000,RAW,None,N,frame\nENDFOR\n",
                                body, body);
        }
        rig.load(script);
        view = std::make_unique<ui::TimelineView>(rig.model, rig.machine.all, nullptr);
        rig.playFrom(rig.model.site().tC1());
        rig.run(3000);
    }
};

BusyRun& busyRun() {
    static BusyRun run;
    return run;
}

void paint(benchmark::State& state) {
    BusyRun& run = busyRun();
    run.view->showAll();
    run.view->zoom(1.0 / static_cast<double>(state.range(0)));
    QImage image(1380, 206, QImage::Format_ARGB32_Premultiplied);
    const ui::TimelineLayout layout = ui::timelineLayout(*run.view, run.theme, image.size(), false);
    for (auto _ : state) {
        QPainter painter(&image);
        ui::paintTimeline(painter, *run.view, layout, run.theme);
    }
    state.counters["frames"] = static_cast<double>(run.rig.model.script().captures().size());
}
BENCHMARK(paint)->ArgName("zoom")->Arg(1)->Arg(8)->Arg(64)->Arg(1000)->Unit(benchmark::kMillisecond);

void scrub(benchmark::State& state) {
    BusyRun& run = busyRun();
    double clock = 0;
    for (auto _ : state)
        run.view->scrubTo(clock = clock > 1000 ? 0 : clock + 1);
}
BENCHMARK(scrub)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv); // for the fonts
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
