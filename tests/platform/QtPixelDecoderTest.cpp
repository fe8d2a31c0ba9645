#include "platform/QtPixelDecoder.h"

#include "support/Child.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace zenka::platform {
namespace {

/// A picture file as ImageMagick writes it.
std::string picture(std::vector<std::string> words, const std::string& ending) {
    const test::TempFolder folder;
    const std::string file = (folder.path() / "picture").string() + ending;
    words.insert(words.begin(), "convert");
    words.push_back(file);
    EXPECT_EQ(test::Child(words).wait(), 0);
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(QtPixelDecoderTest, theColoursComeAsStoredWhateverKindOfPngItIs) {
    const QtPixelDecoder decoder;
    const std::vector<std::string> colours{"-size",         "256x256", "xc:rgb(1,134,160)", "-fill",
                                           "rgb(2,73,250)", "-draw",   "point 3,200"};
    for (const std::vector<std::string>& kind : {std::vector<std::string>{},
                                                 {"-interlace", "PNG"},
                                                 {"-set", "gamma", "0.8"},
                                                 {"-depth", "16"},
                                                 {"-colors", "4", "-type", "Palette"}}) {
        auto words = colours;
        words.insert(words.end(), kind.begin(), kind.end());
        const auto pixels = decoder.decodePng(picture(words, ".png"), 256, 256);
        ASSERT_TRUE(pixels) << testing::PrintToString(kind);
        ASSERT_EQ(pixels->rgba.size(), 256U * 256 * 4);
        const auto colour = [&](std::size_t x, std::size_t y) {
            const auto* at = &pixels->rgba[4 * (y * 256 + x)];
            return std::vector<int>{at[0], at[1], at[2]};
        };
        EXPECT_EQ(colour(0, 0), (std::vector<int>{1, 134, 160})) << testing::PrintToString(kind);
        EXPECT_EQ(colour(3, 200), (std::vector<int>{2, 73, 250})) << testing::PrintToString(kind);
    }
}

TEST(QtPixelDecoderTest, whatIsNoPngOfTheSizeGivesNothing) {
    const QtPixelDecoder decoder;
    const std::string good = picture({"-size", "256x256", "gradient:"}, ".png");
    ASSERT_TRUE(decoder.decodePng(good, 256, 256));
    EXPECT_FALSE(decoder.decodePng(good, 512, 256));
    EXPECT_FALSE(decoder.decodePng(picture({"-size", "256x256", "gradient:"}, ".jpg"), 256, 256));
    EXPECT_FALSE(decoder.decodePng("<html>Log in</html>", 256, 256));
    EXPECT_FALSE(decoder.decodePng("", 256, 256));
    // A header that promises 60000 by 60000 pixels, 14 GB of them.
    std::string bomb = good;
    bomb.replace(16, 8, std::string("\0\0\xEA\x60\0\0\xEA\x60", 8));
    EXPECT_FALSE(decoder.decodePng(bomb, 60000, 60000));
    // Cut anywhere it is no picture, or one whose rest is blank, but never a fault.
    for (std::size_t length = 0; length < good.size(); length += 7)
        decoder.decodePng(std::string_view(good).substr(0, length), 256, 256);
}

} // namespace
} // namespace zenka::platform
