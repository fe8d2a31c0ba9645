// The report in a real browser.
#include "analysis/ReportHTML.h"
#include "analysis/RunAnalysis.h"
#include "support/Child.h"
#include "support/ImageFiles.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

using namespace zenka;
using testing::HasSubstr;
using testing::Not;

namespace {

namespace fs = std::filesystem;

constexpr char hostile[] = "<img src=x onerror=\"console.error('run')\">'\"&.jpg";

struct ReportPage : testing::Test {
    test::TempFolder folder;

    static std::string content(const fs::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    /// What the browser prints; its log goes to a file "log".
    std::string browse(const std::vector<std::string>& options, const fs::path& page) const {
        std::vector<std::string> words{"sh",
                                       "-c",
                                       "cd \"$0\" && exec chromium \"$@\" 2>log",
                                       folder.path(),
                                       "--headless",
                                       "--no-sandbox",
                                       "--disable-gpu",
                                       "--disable-dev-shm-usage",
                                       "--no-first-run",
                                       "--allow-file-access-from-files",
                                       "--enable-logging=stderr",
                                       "--user-data-dir=" + (folder.path() / "browser").string()};
        words.insert(words.end(), options.begin(), options.end());
        words.push_back("file://" + page.string());
        test::Child child(words, {"HOME=" + folder.path().string()});
        std::string printed = child.readRest();
        EXPECT_EQ(child.wait(), 0) << content(folder.path() / "log");
        return printed;
    }
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
    const fs::path report = folder.path() / "report.html";
    test::writeFile(report, page());
    const std::string shown = browse({"--dump-dom"}, report);
    EXPECT_THAT(shown, HasSubstr("&lt;img src=x onerror="));
    EXPECT_THAT(shown, Not(HasSubstr("<img")));
    EXPECT_THAT(shown, Not(HasSubstr("<script")));
    EXPECT_THAT(content(folder.path() / "log"), Not(HasSubstr("CONSOLE")));

    for (const char* width : {"360", "1366"}) {
        const fs::path frame = folder.path() / "frame.html";
        test::writeFile(
            frame,
            std::string("<iframe src=report.html style='border:0;height:700px;width:") + width +
                "px' onload='with(contentDocument.documentElement)document.title=scrollWidth-clientWidth'>");
        EXPECT_THAT(browse({"--dump-dom"}, frame), HasSubstr("<title>0</title>"))
            << "it is to be scrolled downwards only";
    }
    browse({"--print-to-pdf=report.pdf"}, report);
    EXPECT_THAT(content(folder.path() / "report.pdf"), testing::StartsWith("%PDF"));
}
