#include "rig/runlog/RunLogFiles.h"

#include "base/Text.h"

#include <utility>

namespace zenka::rig {

namespace {

constexpr int maxSameNames = 100;
/// Ends a line of which a part may stand in the CSV: with so many fields nobody takes it for a row, even when
/// nothing but its end is missing.
constexpr char spoil[] = ",,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,,\n";

} // namespace

RunLogFiles::RunLogFiles(ports::Files& disk, std::filesystem::path base, RunLogMeta meta, Tell tell)
    : disk_(disk), base_(std::move(base)), meta_(std::move(meta)), tell_(std::move(tell)) {
}

void RunLogFiles::open() {
    if (!make())
        noteTrouble();
}

bool RunLogFiles::make() {
    const std::string head = RunLogFormat::csvHead(meta_);
    const std::filesystem::path wanted = base_;
    for (int number = 2; !(csv_ = disk_.create(withEnding(".csv"), head)); ++number) {
        if (number > maxSameNames || !disk_.exists(withEnding(".csv"))) {
            base_ = wanted;
            return false;
        }
        base_ = wanted.string() + " " + std::to_string(number);
    }
    return true;
}

void RunLogFiles::add(RunLogEntry entry, const absl::TimeZone& zone) {
    write(RunLogFormat::csvRow(entry, zone));
    entries_.push_back(std::move(entry));
    if (finished_)
        finish();
}

void RunLogFiles::add(RunLogEvent event, const absl::TimeZone& zone) {
    // An empty log that was discarded is not made anew for an event.
    if (csv_ || !finished_)
        write(RunLogFormat::csvEvent(event, zone));
    events_.push_back(std::move(event));
}

void RunLogFiles::write(std::string line) {
    waiting_.push_back(std::move(line));
    flush();
}

/// Line by line, so that a disk that is nearly full is not filled with halves of all that waits.
void RunLogFiles::flush() {
    if (!csv_ && !make())
        return noteTrouble();
    while (!waiting_.empty()) {
        if (!csv_->append(torn_ ? spoil + waiting_.front() : waiting_.front())) {
            torn_ = true;
            return noteTrouble();
        }
        torn_ = false;
        waiting_.pop_front();
    }
    if (std::exchange(trouble_, false))
        tell_("📝 The run log can be written again, and has every row.");
}

void RunLogFiles::noteTrouble() {
    if (!std::exchange(trouble_, true))
        tell_(
            "⚠️ The run log cannot be written to " + base_.parent_path().string() +
            ": the disk may be full or gone. Its rows wait in memory and are tried again with each one. The "
            "run goes on.");
}

void RunLogFiles::finish() {
    finished_ = true;
    if (!waiting_.empty())
        flush();
    if (disk_.writeAtomically(withEnding(".json"), RunLogFormat::json(meta_, entries_, events_)))
        return;
    tell_(
        waiting_.empty()
            ? "⚠️ The run log's JSON could not be written; the CSV beside it has every row."
            : "⚠️ " + base::counted(std::ssize(waiting_), "line") +
                  " of the run log could not be written to any file, for the disk took none: make room in " +
                  base_.parent_path().string() + ".");
}

void RunLogFiles::discard() {
    finished_ = true;
    waiting_.clear();
    if (!csv_)
        return;
    csv_.reset();
    disk_.remove(withEnding(".csv"));
}

} // namespace zenka::rig
