#pragma once

#include "support/Child.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace zenka::test {

/// The distribution's Chromium without a window, in a folder of its own.
class Browser {
public:
    const std::filesystem::path& folder() const { return folder_.path(); }

    /// What it prints when it is shown an address, by options such as "--dump-dom". Relative files of the
    /// options are in its folder.
    std::string show(const std::vector<std::string>& options, const std::string& address) const {
        std::vector<std::string> words{"sh",
                                       "-c",
                                       "cd \"$0\" && exec chromium \"$@\" 2>log",
                                       folder(),
                                       "--headless",
                                       "--no-sandbox",
                                       "--disable-gpu",
                                       "--disable-dev-shm-usage",
                                       "--no-first-run",
                                       "--allow-file-access-from-files",
                                       "--enable-logging=stderr",
                                       "--user-data-dir=" + (folder() / "browser").string()};
        words.insert(words.end(), options.begin(), options.end());
        words.push_back(address);
        Child child(words, {"HOME=" + folder().string()});
        std::string printed = child.readRest();
        EXPECT_EQ(child.wait(), 0) << log();
        return printed;
    }

    /// What it had to say, with the page's own messages as CONSOLE.
    std::string log() const { return contentOf(folder() / "log"); }

    /// How much wider a page is than the room that it gets, in pixels: 0 unless it is to be scrolled
    /// sideways.
    std::string tooWideAt(int width, const std::string& address) const {
        const std::filesystem::path frame = folder() / "frame.html";
        std::ofstream(frame) << "<iframe src='" << address << "' style='border:0;height:700px;width:" << width
                             << "px' onload='with(contentDocument.documentElement)document.title="
                                "scrollWidth-clientWidth'>";
        const std::string shown = show({"--dump-dom", "--disable-web-security"}, "file://" + frame.string());
        const auto begin = shown.find("<title>") + 7;
        return shown.substr(begin, shown.find("</title>") - begin);
    }

    static std::string contentOf(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

private:
    TempFolder folder_;
};

} // namespace zenka::test
