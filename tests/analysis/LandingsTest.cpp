#include "analysis/Landings.h"

#include "analysis/CardClock.h"
#include "analysis/PlainLandings.h"
#include "analysis/Runs.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

using namespace zenka;
using analysis::ExifFrame;
using script::Capture;

namespace {

class Dice {
public:
    explicit Dice(unsigned seed) : engine_(seed) {}
    int upTo(int most) { return std::uniform_int_distribution(0, most)(engine_); }
    bool oneIn(int count) { return upTo(count - 1) == 0; }

private:
    std::mt19937 engine_;
};

/// A plan and a card that got some of it, with everything that can go wrong. Coarse times make many ties.
struct Scene {
    std::vector<Capture> captures;
    std::vector<ExifFrame> frames;
};

Scene sceneOf(Dice& dice, int count) {
    constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
    const std::vector<double> odd{0, -1, noNumber, std::numeric_limits<double>::infinity(), 1e-300};
    const int settings = 1 + dice.upTo(4);
    const int spacing = 1 + dice.upTo(60);
    const int drop = 2 + dice.upTo(12);
    const int spoil = 2 + dice.upTo(12);
    const double drift = dice.upTo(3) * 0.01;
    Scene scene;
    double at = 0;
    for (int i = 0; i < count; ++i) {
        at += dice.oneIn(4) ? 0 : dice.upTo(spacing);
        const int kind = dice.upTo(settings);
        scene.captures.push_back(test::capture(
            at, 0.001 * (1 << kind), dice.oneIn(5) ? 0 : 100 + 100 * (kind % 2), dice.oneIn(9) ? 0 : 8));
        if (dice.oneIn(drop))
            continue;
        ExifFrame frame = test::frameOf(scene.captures.back(), 10800 + drift * at + dice.upTo(2));
        if (dice.oneIn(spoil))
            frame.shutterSec = odd[static_cast<std::size_t>(dice.upTo(4))];
        if (dice.oneIn(spoil))
            frame.iso = dice.oneIn(2) ? -5 : 125;
        if (dice.oneIn(spoil))
            frame.date = frame.date + base::Seconds(dice.upTo(120) - 60);
        scene.frames.push_back(frame);
        if (dice.oneIn(spoil))
            scene.frames.push_back(frame);
    }
    std::ranges::stable_sort(scene.frames, {}, &ExifFrame::date);
    return scene;
}

void expectAsPlain(const Scene& scene) {
    const auto quick = analysis::findLandings(scene.captures, scene.frames);
    const auto plain = test::plain::landings(scene.captures, scene.frames);
    ASSERT_EQ(quick.size(), plain.size());
    for (std::size_t i = 0; i < quick.size(); ++i) {
        ASSERT_EQ(quick[i].frame, plain[i].first) << "capture " << i;
        ASSERT_EQ(quick[i].rightSettings, plain[i].second) << "capture " << i;
    }
}

} // namespace

TEST(Landings, areThoseOfAPlainLookAtEachPair) {
    int matched = 0;
    int misExposed = 0;
    int missing = 0;
    for (unsigned seed = 0; seed < 400; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const Scene scene = sceneOf(dice, dice.upTo(seed % 10 == 0 ? 200 : 40));
        expectAsPlain(scene);
        if (HasFatalFailure())
            return;
        for (const auto& landing : analysis::findLandings(scene.captures, scene.frames))
            ++(landing.matched() ? matched : landing.misExposed() ? misExposed : missing);
    }
    // The scenes are of all kinds.
    EXPECT_GT(matched, 1000);
    EXPECT_GT(misExposed, 100);
    EXPECT_GT(missing, 100);
}

TEST(Landings, ofOffsetsThatAreAsGoodTheFirstIsTaken) {
    const std::vector<Capture> captures(8, test::capture(0));
    std::vector<ExifFrame> frames;
    for (int i = 0; i < 8; ++i)
        frames.push_back(test::frameOf(captures.front(), i));
    analysis::MatchRows rows(captures, frames);
    EXPECT_EQ(analysis::findClockOffset(captures, frames, rows), test::cardZero);
}

TEST(Landings, beyondTheLimitOfTheTableTheFirstFreeFrameIsTaken) {
    Dice dice(7);
    Scene scene = sceneOf(dice, 2950);
    scene.frames.resize(std::min<std::size_t>(scene.frames.size(), 2800));
    ASSERT_GT(scene.captures.size() * scene.frames.size(), analysis::mostAlignmentCells);
    expectAsPlain(scene);
}
