// The web data as the program writes them, against their schemas and in a real browser.
#include "support/Browser.h"
#include "support/ImageFiles.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>

using namespace zenka;
using testing::HasSubstr;
using testing::Not;

namespace {

namespace fs = std::filesystem;

struct ExportWeb : testing::Test {
    test::Browser browser;
    const fs::path set = browser.folder() / "data set";

    struct Result {
        std::string output;
        int status = 0;
    };

    /// The program on a box with no display, through a shell that may put limits on it.
    Result exportTo(const std::string& target, const std::string& limits = "") const {
        test::Child child(
            {"sh", "-c", limits + "exec \"$0\" --export-web \"$1\"", ZENKA_EXECUTABLE, target},
            {"HOME=" + browser.folder().string(), "DISPLAY=", "WAYLAND_DISPLAY=", "QT_QPA_PLATFORM="});
        std::string output = child.readRest();
        return {std::move(output), child.wait()};
    }

    /// Opens the page in a frame of a width, does something there and shows what comes of it as the title.
    std::string inPage(int width, const std::string& hash, const std::string& steps) const {
        const fs::path frame = browser.folder() / "frame.html";
        test::writeFile(
            frame, "<!DOCTYPE html><iframe id=f style='border:0;height:800px;width:" + std::to_string(width) +
                       "px' src='data%20set/index.html" + hash +
                       "'></iframe><script>const wait = ms => new Promise(r => setTimeout(r, ms));"
                       "f.onload = async () => { await wait(500); const page = f.contentDocument;"
                       "const all = what => [...page.querySelectorAll(what)];"
                       "const cells = place => { const row = all('#places tr').find(r => "
                       "r.firstChild.textContent.startsWith(place)); return row ? [...row.children].map(c => "
                       "c.textContent).join('|') : 'none'; };"
                       "const change = (id, value, what) => { const e = page.getElementById(id); e.value = "
                       "value; e.dispatchEvent(new Event(what)); };" +
                       steps + "};</script>");
        return browser.show({"--dump-dom", "--virtual-time-budget=6000"}, "file://" + frame.string());
    }
};

} // namespace

TEST_F(ExportWeb, theFilesHoldToTheirSchemasAndForeignOnesStay) {
    test::writeFile(set / "eclipses/notes.txt", "mine");
    test::writeFile(set / "index.html", "an older one");
    const Result result = exportTo(set);
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, testing::StartsWith("208 files, "));
    EXPECT_EQ(test::Browser::contentOf(set / "eclipses/notes.txt"), "mine");
    EXPECT_THAT(test::Browser::contentOf(set / "index.html"), testing::StartsWith("<!DOCTYPE html>"));

    test::Child check({"/usr/bin/python3", ZENKA_SOURCE_DIR "/tests/e2e/check_web_data.py", set.string(),
                       "catalogue.json", "eclipses/2024-04-08.json", "eclipses/2026-08-12.json",
                       "eclipses/2049-11-25.json", "eclipses/2057-12-26.json", "eclipses/2044-02-28.json"});
    EXPECT_EQ(check.readRest(), "checked 6\n");

    std::uintmax_t bytes = 0;
    for (const auto& entry : fs::recursive_directory_iterator(set))
        bytes += entry.is_regular_file() ? entry.file_size() : 0;
    std::printf("%.1f MB, ceiling 20 MB\n", static_cast<double>(bytes) / 1e6);
    EXPECT_LT(bytes, 20e6);
    EXPECT_EQ(exportTo(set).output, result.output) << "the same again";
}

TEST_F(ExportWeb, aRealBrowserShowsThePageFromADiskAtAnyWidth) {
    ASSERT_EQ(exportTo(set).status, 0);
    for (const int width : {360, 1366}) {
        EXPECT_THAT(
            inPage(width, "#2026-08-12",
                   "const d = page.documentElement;"
                   "document.title = (d.scrollWidth - d.clientWidth) + ' ' + all('#places tr').length;"),
            testing::ContainsRegex("<title>0 [0-9][0-9]</title>"))
            << "it is to be scrolled downwards only";
        EXPECT_THAT(browser.log(), Not(HasSubstr("CONSOLE")));
    }
    EXPECT_THAT(inPage(1366, "#2026-08-12", "document.title = cells('Zaragoza');"),
                HasSubstr("<title>Zaragoza, ES|17:34:42|18:29:03|18:29:45|18:30:27|(19:21:29)|1 m 23.4 s|"));

    // From the search by keyboard to another eclipse; local times; another order.
    const std::string title = inPage(
        1000, "#2026-08-12",
        "change('search', '2024 dall', 'input'); const none = page.getElementById('count').textContent;"
        "change('search', '2024 mexico', 'input'); change('type', 'Total', 'change');"
        "page.getElementById('search').focus();"
        "page.activeElement.dispatchEvent(new KeyboardEvent('keydown', {key: 'ArrowDown', bubbles: true}));"
        "page.activeElement.click(); await wait(500); change('clock', 'local', 'change');"
        "const dallas = cells('Dallas'); page.querySelector('[data-key=name]').click();"
        "document.title = [none, page.title, dallas, page.querySelector('#places th').textContent, "
        "page.querySelector('[aria-sort]').textContent, all('[aria-current]').length].join(' / ');");
    EXPECT_THAT(title, HasSubstr("<title>0 eclipses / Total Solar Eclipse of 2024 April 08 / "
                                 "Dallas, USAmerica/Chicago|12:23:19|13:40:44|13:42:39|13:44:34|15:02:41|"));
    EXPECT_THAT(title, testing::ContainsRegex("/ A[a-z]+, [A-Z][A-Z].* / Place / 1</title>"));
    EXPECT_THAT(browser.log(), Not(HasSubstr("CONSOLE")));

    EXPECT_THAT(inPage(1000, "#%3Cimg%20src=x%3E", "document.title = page.title;"),
                testing::ContainsRegex("<title>[A-Z][a-z]+ Solar Eclipse of 20"))
        << "an address that is none shows the next eclipse";
}

TEST_F(ExportWeb, whatIsSaidInTheDataStaysText) {
    ASSERT_EQ(exportTo(set).status, 0);
    const char hostile[] = "<img src=x onerror=console.error(1)>";
    std::string script = test::Browser::contentOf(set / "page/2026-08-12.js");
    for (const std::string name : {"Zaragoza", "Iceland / Spain", "Europe/Madrid", "Total Solar"}) {
        const std::size_t at = script.find(name);
        ASSERT_NE(at, std::string::npos) << name;
        script.replace(at, name.size(), hostile);
    }
    test::writeFile(set / "page/2026-08-12.js", script);
    const std::string title = inPage(1000, "#2026-08-12",
                                     "change('clock', 'local', 'change');"
                                     "document.title = all('img').length + ' ' + all('#places tr').length;");
    EXPECT_THAT(title, testing::ContainsRegex("<title>0 [0-9][0-9]</title>"));
    EXPECT_THAT(browser.log(), Not(HasSubstr("CONSOLE")));
}

TEST_F(ExportWeb, aFolderThatCannotBeWrittenIsToldInOneSentence) {
    const std::string file = browser.folder() / "a file";
    test::writeFile(file, "mine");
    for (const std::string& target : {file, file + "/below", std::string("/proc/none")}) {
        const Result result = exportTo(target);
        EXPECT_EQ(result.status, 0) << target;
        EXPECT_EQ(result.output, "cannot write " + target + "/index.html\n");
    }
    EXPECT_EQ(test::Browser::contentOf(file), "mine");

    // As on a full disk some files fit and a later one does not.
    const Result full = exportTo(set, "trap '' XFSZ; ulimit -f 64; ");
    EXPECT_EQ(full.status, 0);
    EXPECT_EQ(full.output, "cannot write " + (set / "page/land.js").string() + "\n");
    EXPECT_FALSE(fs::exists(set / "catalogue.json")) << "which would name files that are not there";
    for (const auto& entry : fs::recursive_directory_iterator(set))
        EXPECT_FALSE(entry.path().filename().string().starts_with(".zenka-")) << entry.path();
}
