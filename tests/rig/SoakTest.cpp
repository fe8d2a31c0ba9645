#include "analysis/CsvRows.h"
#include "rig/SixFailingBodies.h"

#include <gmock/gmock.h>

#include <iostream>

using namespace zenka;

namespace {

struct Soak : testing::Test, test::SixFailingBodies {
    Soak() { random.seed(20270802); }
};

} // namespace

// Six bodies of all makers, ten thousand frames, and everything goes wrong now and then: each frame has its
// one row, every completion came, and nothing is left open.
TEST_F(Soak, tenThousandFramesOnSixFailingBodiesAreEachAccountedForOnce) {
    constexpr int rounds = 1667;
    constexpr int frames = 6 * rounds;
    detectAll();
    ASSERT_FALSE(HasFatalFailure());
    std::string script = absl::StrFormat("FOR,(INTERVALOMETER),0,3,%d\n", rounds);
    for (int body = 0; body < 6; ++body)
        script += rig->frameAt(body * 0.5, absl::StrFormat("CAM%d", body + 1));
    rig->load(script + "ENDFOR\n");
    ASSERT_EQ(rig->model.script().captures().size(), static_cast<std::size_t>(frames));
    rig->playFrom(-1);
    faults = true;
    // The clock of a simulation stands still while a worker's wait is played.
    for (int beat = 0; rig->model.fireLoop().firedCount().get() < frames && beat < 4 * frames / 10; ++beat) {
        stir();
        rig->run(5);
    }
    faults = false;
    rig->run(60);

    const std::string csv = rig->files.only(".csv");
    analysis::CsvRows rows(csv);
    const auto column = [&rows](const char* name) { return rows.column(name).value(); };
    std::map<std::string, int> results;
    std::set<std::string> scheduled;
    while (const auto* row = rows.next()) {
        ++results[row->at(column("result"))];
        const std::string frame = row->at(column("offset_sec")) + " " + row->at(column("camera_token"));
        EXPECT_TRUE(scheduled.insert(frame).second) << "twice: " << frame;
    }
    EXPECT_EQ(scheduled.size(), static_cast<std::size_t>(frames));
    for (const auto& [result, count] : results)
        std::cout << result << ": " << count << "\n";
    EXPECT_GT(results["ok"], frames / 2) << "bodies come back and go on firing";
    EXPECT_GT(results["dropped"], 100) << "the faults were really met";

    rig->model.handleAppWillTerminate();
    sdk->releaseSDK();
    EXPECT_EQ(edsdk.fake().references, 0);
    rig.reset();
    EXPECT_EQ(crsdk.openSessions(), 0U);
    EXPECT_EQ(children->living, 0);
    EXPECT_EQ(helpers->living, 0);
}
