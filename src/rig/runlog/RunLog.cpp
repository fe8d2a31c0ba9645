#include "rig/runlog/RunLog.h"

#include <utility>

namespace zenka::rig {

namespace {

constexpr base::Seconds shutDownLimit{5};

} // namespace

RunLog::RunLog(const ports::Ports& ports, std::shared_ptr<ports::WorkQueue> queue, RunLogMeta meta,
               const std::string& baseName, RunLogFiles::Tell tell)
    : clock_(ports.clock), meta_(std::move(meta)), csvPath_(ports.folders.runLogs() / (baseName + ".csv")),
      q_(std::move(queue)), files_(std::make_shared<RunLogFiles>(
                                ports.files, ports.folders.runLogs() / baseName, meta_, std::move(tell))) {
    post([](RunLogFiles& files) { files.open(); });
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
    post([](RunLogFiles& files) { files.finish(); });
}

void RunLog::finishOrDiscard(base::Seconds grace) {
    q_->postAfter(grace, [files = files_] {
        if (files->empty())
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
    post([](RunLogFiles& files) { files.discard(); });
    q_->drain(shutDownLimit);
}

void RunLog::post(void (*work)(RunLogFiles&)) {
    q_->post([files = files_, work] { work(*files); });
}

} // namespace zenka::rig
