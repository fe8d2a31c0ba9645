#pragma once

#include "ports/Ports.h"
#include "rig/runlog/RunLogFiles.h"
#include "rig/runlog/RunLogFormat.h"

#include <filesystem>
#include <memory>
#include <string>

namespace zenka::rig {

/// The files of one run: a CSV that grows row by row, so that a crash loses nothing, and a JSON written
/// at the end. All disk work is done on a queue; a caller never waits for it, and no failure of the disk
/// reaches the run, but its operator. Main thread.
class RunLog {
public:
    /// Opens the CSV under a base name, with a number added where a file has the name already. What goes
    /// wrong with the disk is told on the queue.
    RunLog(const ports::Ports& ports, std::shared_ptr<ports::WorkQueue> queue, RunLogMeta meta,
           const std::string& baseName, RunLogFiles::Tell tell);

    const RunLogMeta& meta() const { return meta_; }
    std::filesystem::path csvPath() const;

    /// A row that comes after the end of the run, from a shot that was in flight, is still written into
    /// both files.
    void log(RunLogEntry entry, const absl::TimeZone& zone);
    void event(std::string text, const absl::TimeZone& zone);

    /// Rows logged so far. A row counts from its logging on, so nothing waits for the queue.
    int frameCount() const { return rows_; }

    /// Writes the JSON.
    void finish();
    /// After the grace period, in which late completions may still bring rows: removes the CSV of a run
    /// without a row, and finishes one that has some.
    void finishOrDiscard(base::Seconds grace);

    /// The same at shut-down, waiting for the disk, but not without limit.
    void finishSync();
    void discardSync();

private:
    void post(void (*work)(RunLogFiles&));

    ports::Clock& clock_;
    RunLogMeta meta_;
    std::filesystem::path csvPath_;
    int rows_ = 0;
    std::shared_ptr<ports::WorkQueue> q_;
    std::shared_ptr<RunLogFiles> files_; // lives on the queue, as long as work for it is posted
};

} // namespace zenka::rig
