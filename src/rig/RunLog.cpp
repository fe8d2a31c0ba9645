#include "rig/RunLog.h"

#include <utility>

namespace zenka::rig {

namespace {

constexpr base::Seconds shutDownLimit{5};
constexpr int maxSameNames = 100;

} // namespace

/// Lives on the queue alone once it is made, and as long as work for it is posted: a row that was logged
/// is written even when its log is gone.
struct RunLog::Files {
    ports::Files& disk;
    std::filesystem::path base; // the path without its ending
    RunLogMeta meta;
    std::unique_ptr<ports::AppendFile> csv{};
    std::vector<RunLogEntry> entries{};
    std::vector<RunLogEvent> events{};
    bool finished = false;

    std::filesystem::path withEnding(const char* ending) const { return base.string() + ending; }

    void open() {
        const std::string head = RunLogFormat::csvHead(meta);
        const std::filesystem::path wanted = base;
        for (int number = 2; !(csv = disk.create(withEnding(".csv"), head)); ++number) {
            if (number > maxSameNames || !disk.exists(withEnding(".csv")))
                return; // the folder takes no file; the rows are kept for the JSON
            base = wanted.string() + " " + std::to_string(number);
        }
    }

    void add(RunLogEntry entry, const absl::TimeZone& zone) {
        if (!csv && finished)
            open(); // an empty log was discarded, and here is a row after all
        if (csv)
            csv->append(RunLogFormat::csvRow(entry, zone));
        entries.push_back(std::move(entry));
        if (finished)
            finish();
    }

    void add(RunLogEvent event, const absl::TimeZone& zone) {
        if (csv)
            csv->append(RunLogFormat::csvEvent(event, zone));
        events.push_back(std::move(event));
    }

    void finish() {
        finished = true;
        disk.writeAtomically(withEnding(".json"), RunLogFormat::json(meta, entries, events));
    }

    void discard() {
        finished = true;
        if (!csv)
            return;
        csv.reset();
        disk.remove(withEnding(".csv"));
    }
};

RunLog::RunLog(const ports::Ports& ports, std::shared_ptr<ports::WorkQueue> queue, RunLogMeta meta,
               const std::string& baseName)
    : clock_(ports.clock), meta_(std::move(meta)), csvPath_(ports.folders.runLogs() / (baseName + ".csv")),
      q_(std::move(queue)),
      files_(new Files{.disk = ports.files, .base = ports.folders.runLogs() / baseName, .meta = meta_}) {
    post([](Files& files) { files.open(); });
}

std::filesystem::path RunLog::csvPath() const {
    return csvPath_;
}

void RunLog::log(RunLogEntry entry, const absl::TimeZone& zone) {
    ++rows_;
    q_->post([files = files_, entry = std::move(entry), zone] { files->add(entry, zone); });
}

void RunLog::event(std::string text, const absl::TimeZone& zone) {
    q_->post([files = files_, event = RunLogEvent{clock_.now(), std::move(text)}, zone] {
        files->add(event, zone);
    });
}

void RunLog::finish() {
    post([](Files& files) { files.finish(); });
}

void RunLog::finishOrDiscard(base::Seconds grace) {
    q_->postAfter(grace, [files = files_] {
        if (files->entries.empty())
            files->discard();
        else
            files->finish();
    });
}

void RunLog::finishSync() {
    finish();
    q_->drain(shutDownLimit);
}

void RunLog::discardSync() {
    post([](Files& files) { files.discard(); });
    q_->drain(shutDownLimit);
}

void RunLog::post(void (*work)(Files&)) {
    q_->post([files = files_, work] { work(*files); });
}

} // namespace zenka::rig
