// The report in a real browser.
#include "analysis/ReportHTML.h"
#include "analysis/RunAnalysis.h"
#include "support/Browser.h"
#include "support/ImageFiles.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace zenka;
using testing::HasSubstr;
using testing::Not;

namespace {

namespace fs = std::filesystem;

constexpr char hostile[] = "<img src=x onerror=\"console.error('run')\">'\"&.jpg";

struct ReportPage : testing::Test {
    test::Browser browser;

    /// A run with every kind of fault in it, and names that want to be more than text.
    std::string page() const {
        std::vector<script::Capture> captures;
        std::vector<analysis::ExifFrame> captured;
        for (int i = 0; i < 120; ++i) {
            captures.push_back({.offsetSec = 2.0 * i,
                                .refLabel = i < 60 ? "Pre 40%" : "C2 +3s",
                                .camera = hostile,
                                .shutterSec = 0.002,
                                .aperture = 8,
                                .iso = 320,
                                .comment = i % 2 == 0 ? hostile : ""});
            if (i % 10 != 3)
                captured.push_back({.file = hostile,
                                    .date = {1786566543 + 2.0 * i},
                                    .iso = 400,
                                    .aperture = 8,
                                    .shutterSec = i % 10 == 5 ? 0.5 : 0.002});
        }
        const auto result = analysis::RunAnalysis::compare(captures, captured, {hostile, hostile, hostile},
                                                           analysis::SoftwareOK{{600, true}}, hostile);
        return analysis::ReportHTML::generate(
            result, captured, captures,
            {.imageFiles = 300, .generated = {1786570000}, .zone = absl::UTCTimeZone()});
    }
};

} // namespace

TEST_F(ReportPage, aRealBrowserShowsItAsTextAtAnyWidthAndPrintsIt) {
    const fs::path report = browser.folder() / "report.html";
    test::writeFile(report, page());
    const std::string address = "file://" + report.string();
    const std::string shown = browser.show({"--dump-dom"}, address);
    EXPECT_THAT(shown, HasSubstr("&lt;img src=x onerror="));
    EXPECT_THAT(shown, Not(HasSubstr("<img")));
    EXPECT_THAT(shown, Not(HasSubstr("<script")));
    EXPECT_THAT(browser.log(), Not(HasSubstr("CONSOLE")));
    for (const int width : {360, 1366})
        EXPECT_EQ(browser.tooWideAt(width, "report.html"), "0") << "it is to be scrolled downwards only";
    browser.show({"--print-to-pdf=report.pdf"}, address);
    EXPECT_THAT(test::Browser::contentOf(browser.folder() / "report.pdf"), testing::StartsWith("%PDF"));
}
