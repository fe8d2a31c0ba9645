#pragma once

#include "ports/Files.h"

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zenka::services {

/// The events that wait on the disk to be sent, "telemetry-spool.jsonl": a JSON object a line, with `id` and
/// `body`, oldest first. Beside it is the folder "telemetry-outbox", with the body of each record that is on
/// its way. One thread at a time, and never the main one.
///
/// A kill or a power cut may leave the last line cut. It counts for nothing, and the next record begins on a
/// line of its own. Other damaged lines are dropped when the file is read.
class TelemetrySpool {
public:
    struct Record {
        std::string id;
        std::string body; ///< a JSON object

        friend bool operator==(const Record&, const Record&) = default;
    };

    /// The file grows to this size at most; then the oldest records go.
    static constexpr std::size_t mostBytes = 5'000'000;

    /// The folder is the program's own.
    TelemetrySpool(ports::Files& files, const std::filesystem::path& folder)
        : files_(files), spool_(folder / "telemetry-spool.jsonl"), outbox_(folder / "telemetry-outbox") {}

    /// False when the disk did not take it: the record is lost and the others are not.
    bool append(const Record& record);

    /// All records that are whole.
    std::vector<Record> read();

    /// Takes records out, in one rewrite, and their files out of the outbox. False when the disk did not let
    /// it: they stand as before.
    bool remove(const std::set<std::string>& ids);

    /// Takes everything away.
    void clear();

    /// Puts a body into the outbox, or takes it out. A full disk keeps nothing from being sent.
    void putOut(const Record& record);
    void takeIn(const std::string& id) { files_.remove(outFile(id)); }
    /// Takes out what an earlier process has left, all but these.
    void tidyOutbox(const std::set<std::string>& onTheirWay);

private:
    struct Content {
        std::vector<Record> records;
        bool damaged = false; ///< some lines are none
    };

    Content load();
    bool rewrite(const std::vector<Record>& records);
    bool makeRoom(std::size_t bytes);
    std::filesystem::path outFile(const std::string& id) const { return outbox_ / (id + ".json"); }

    ports::Files& files_;
    const std::filesystem::path spool_;
    const std::filesystem::path outbox_;
    /// What is known of the file: nothing before the first look and after a write that went wrong.
    std::optional<std::size_t> size_;
    bool endsCut_ = false;
};

} // namespace zenka::services
