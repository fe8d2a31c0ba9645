#pragma once

#include "ports/Ports.h"
#include "rig/run/RunState.h"

#include <memory>
#include <optional>

namespace zenka::rig {

/// The one file in which a running run is remembered. Saving and clearing do not wait for the disk and
/// take effect in their order.
class RunStateStore {
public:
    explicit RunStateStore(const ports::Ports& ports);

    void save(const RunState& state);
    void clear();

    struct Loaded {
        std::optional<RunState> state;
        bool damaged = false;    ///< there is a file that cannot be read as one
        bool unreadable = false; ///< there is a file that the disk does not give
    };
    /// Reads the file once all that was asked for before is done; for start-up and shut-down, when waiting
    /// does no harm.
    Loaded load();

    /// Waits until all is on the disk.
    bool drain();

private:
    ports::Files& disk_;
    std::filesystem::path file_;
    std::shared_ptr<ports::WorkQueue> queue_;
    const std::shared_ptr<RunStateWriter> writer_; ///< on the queue alone
};

} // namespace zenka::rig
