#pragma once

#include "ports/Files.h"
#include "rig/runlog/RunLogFormat.h"

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zenka::rig {

/// The two files of a run, as the log's queue works on them. What the disk does not take waits in memory and
/// is tried again with each row; the operator hears of it once, and once more when all is well.
class RunLogFiles {
public:
    /// Hears a line for the operator's log; on the queue.
    using Tell = std::function<void(const std::string& line)>;

    /// The base is the path without its ending; a number is added to it where a file has the name already.
    RunLogFiles(ports::Files& disk, std::filesystem::path base, RunLogMeta meta, Tell tell);

    void open();
    void add(RunLogEntry entry, const absl::TimeZone& zone);
    void add(RunLogEvent event, const absl::TimeZone& zone);

    /// Writes the JSON; again with each row that comes later.
    void finish();
    /// Removes the CSV of a run without a row.
    void discard();

    bool empty() const { return entries_.empty(); }

private:
    std::filesystem::path withEnding(const char* ending) const { return base_.string() + ending; }
    bool make();
    void write(std::string line);
    void flush();
    void noteTrouble();

    ports::Files& disk_;
    std::filesystem::path base_;
    const RunLogMeta meta_;
    const Tell tell_;
    std::unique_ptr<ports::AppendFile> csv_;
    std::deque<std::string> waiting_; ///< lines that the CSV has not taken yet
    bool torn_ = false;               ///< of the line that failed a part may stand in the CSV
    bool trouble_ = false;            ///< the operator knows
    std::vector<RunLogEntry> entries_;
    std::vector<RunLogEvent> events_;
    bool finished_ = false;
};

} // namespace zenka::rig
