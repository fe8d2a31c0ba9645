#pragma once

#include "base/Instant.h"
#include "ports/Settings.h"
#include "ports/WorkQueues.h"

#include <filesystem>
#include <map>
#include <memory>

namespace zenka::platform {

/// Settings in an INI file of QSettings, held in memory: read once, when made, and written on a queue,
/// a burst of writes in one go.
///
/// The file holds all values as text, and so does this object: text() gives any value as it stands in
/// the file, number() a text that reads as a number, flag() "true" and "false".
///
/// A file that cannot be read in full gives what can be read; it is kept as a copy beside the new one.
/// A write that the disk refuses is tried again with the next one. Destroying the object waits for
/// the disk, 5 s at most.
class QtSettings final : public ports::Settings {
public:
    /// "ZenkaRig/zenka.conf" in the user's configuration folder.
    explicit QtSettings(ports::WorkQueues& queues);
    QtSettings(ports::WorkQueues& queues, const std::filesystem::path& file);
    QtSettings(const QtSettings&) = delete;
    QtSettings& operator=(const QtSettings&) = delete;
    ~QtSettings() override;

    std::optional<std::string> text(const std::string& key) const override;
    void setText(const std::string& key, const std::string& value) override;

    std::optional<double> number(const std::string& key) const override;
    void setNumber(const std::string& key, double value) override;

    std::optional<bool> flag(const std::string& key) const override;
    void setFlag(const std::string& key, bool value) override;

    void remove(const std::string& key) override;

    std::vector<std::string> keysBeginningWith(const std::string& prefix) const override;

    /// Lets an environment variable rule over a key where there is one: ZENKA_SERVICE_HOST over
    /// "zenka.serviceHost". What is set while it rules counts once it is gone.
    void letEnvironmentRule(const std::string& key);

    /// What was wrong with the file when it was read, as a sentence.
    std::optional<std::string> damage() const { return damage_; }

    /// Waits until all is on the disk; false when it is not, by the limit or by the disk's fault.
    bool flush(base::Seconds limit);

private:
    class Writer;

    void load(const std::filesystem::path& file);
    void change(const std::string& key, std::optional<std::string> value);

    std::map<std::string, std::string> values_;
    std::map<std::string, std::string> ruling_; // from the environment
    std::optional<std::string> damage_;
    std::shared_ptr<Writer> writer_;
    std::shared_ptr<ports::WorkQueue> queue_;
};

} // namespace zenka::platform
