#include "cli/ExportWeb.h"

#include "analysis/InParallel.h"
#include "cli/Print.h"
#include "eclipse/Catalog.h"
#include "geo/Bundled.h"
#include "platform/LinuxFiles.h"
#include "platform/ThreadWorkQueues.h"
#include "webdata/DataFiles.h"

#include <absl/strings/str_format.h>

#include <filesystem>
#include <mutex>
#include <vector>

namespace zenka::cli {

namespace {

namespace fs = std::filesystem;

/// Writes files until one cannot be written. Any thread.
class Export {
public:
    explicit Export(fs::path folder) : folder_(std::move(folder)) {}

    bool failed() {
        const std::lock_guard lock(lock_);
        return !failed_.empty();
    }

    void write(const std::vector<webdata::DataFile>& dataFiles) {
        for (const webdata::DataFile& file : dataFiles) {
            if (failed())
                return;
            const bool done = files_.writeDocument(folder_ / file.path, file.text);
            const std::lock_guard lock(lock_);
            if (done) {
                ++count_;
                bytes_ += file.text.size();
            } else if (failed_.empty()) {
                failed_ = folder_ / file.path;
            }
        }
    }

    std::string summary() {
        const std::lock_guard lock(lock_);
        if (!failed_.empty())
            return "cannot write " + failed_.string();
        return absl::StrFormat("%d files, %.1f MB: open %s in a browser", count_,
                               static_cast<double>(bytes_) / 1e6, (folder_ / "index.html").string());
    }

private:
    platform::LinuxFiles files_;
    fs::path folder_;
    std::mutex lock_; // for all below
    fs::path failed_;
    int count_ = 0;
    std::size_t bytes_ = 0;
};

} // namespace

void exportWeb(const std::string& folder) {
    Export whole(folder);
    whole.write(webdata::fixedFiles());
    const webdata::BigPlaces places(geo::bundledPlaces());
    const std::vector<eclipse::EclipseRecord>& rows = eclipse::Catalog::all();
    platform::ThreadWorkQueues queues;
    analysis::inParallel(queues, rows.size(), [&](std::size_t i) {
        if (!whole.failed())
            whole.write(webdata::eclipseFiles(eclipse::Eclipse(rows[i]), places));
    });
    // It comes last, so that it names no file that is not there.
    whole.write(webdata::catalogueFiles());
    printLine(whole.summary());
}

} // namespace zenka::cli
