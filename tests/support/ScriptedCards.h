#pragma once

#include "ports/ImageMetadata.h"
#include "ports/Volumes.h"

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace zenka::test {

/// Says of each file what the test has put down for its name.
struct ToldImages final : ports::ImageMetadata {
    std::map<std::string, ports::ImageFields> fields;
    std::vector<std::string> asked;            ///< names, in the order of the questions
    ports::ImageMetadata* otherwise = nullptr; ///< reads the files that nothing was put down for

    std::optional<ports::ImageFields> read(const std::filesystem::path& file) override {
        {
            const std::lock_guard guard(lock_);
            asked.push_back(file.filename());
            const auto found = fields.find(file.filename());
            if (found != fields.end())
                return found->second;
        }
        return otherwise ? otherwise->read(file) : std::nullopt;
    }

private:
    std::mutex lock_;
};

/// Volumes that the test plugs in and pulls out.
struct ScriptedVolumes final : ports::Volumes {
    std::vector<std::filesystem::path> plugged;
    std::function<void()> changed;

    std::vector<std::filesystem::path> mounted() override { return plugged; }
    void watch(std::function<void()> heard) override { changed = std::move(heard); }
    void plug(const std::filesystem::path& volume) {
        plugged.push_back(volume);
        if (changed)
            changed();
    }
};

} // namespace zenka::test
