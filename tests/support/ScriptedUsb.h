#pragma once

#include "ports/ProcessTable.h"
#include "ports/UsbBus.h"

#include <algorithm>
#include <map>
#include <utility>

namespace zenka::test {

/// A bus with what a test plugs in; it may be one that cannot be looked at.
class ScriptedUsbBus final : public ports::UsbBus {
public:
    std::optional<std::vector<ports::UsbDevice>> plugged = std::vector<ports::UsbDevice>();

    std::optional<std::vector<ports::UsbDevice>> devices() override { return plugged; }
    void watch(std::function<void()> changed) override { changed_ = std::move(changed); }

    /// Tells of a change, as after one of `plugged`.
    void tellChange() const {
        if (changed_)
            changed_();
    }

private:
    std::function<void()> changed_;
};

/// Processes as a test lists them.
class ScriptedProcessTable final : public ports::ProcessTable {
public:
    std::optional<std::vector<ports::RunningProcess>> processes = std::vector<ports::RunningProcess>();
    std::map<std::filesystem::path, std::vector<int>> holderIds;
    std::vector<int> ended;

    std::optional<std::vector<ports::RunningProcess>> running() override { return processes; }

    std::optional<std::vector<ports::RunningProcess>> holdersOf(const std::filesystem::path& file) override {
        auto holders = processes;
        if (holders)
            std::erase_if(*holders, [&](const ports::RunningProcess& process) {
                return std::ranges::count(holderIds[file], process.id) == 0;
            });
        return holders;
    }

    bool end(int id) override {
        const bool mine = processes && std::erase_if(*processes, [&](const ports::RunningProcess& process) {
                                           return process.id == id && process.mine;
                                       }) > 0;
        if (mine)
            ended.push_back(id);
        return mine;
    }
};

} // namespace zenka::test
