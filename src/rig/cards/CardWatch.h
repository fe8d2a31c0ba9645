#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zenka::rig {

/// The memory cards in the computer's readers. Looks for them off the main thread. Main thread.
class CardWatch {
public:
    /// DCIM folders.
    using Cards = std::vector<std::filesystem::path>;

    explicit CardWatch(const ports::Ports& ports);
    CardWatch(const CardWatch&) = delete;
    CardWatch& operator=(const CardWatch&) = delete;
    ~CardWatch();

    /// Looks now and at each volume that comes or goes. The cards that are in at the start are not told as
    /// inserted.
    void start();

    /// Looks once; `done` hears of the cards found.
    void look(std::function<void(const Cards&)> done);

    /// As the last look found them.
    const base::Published<Cards>& cards() const { return cards_; }
    /// A card was put in.
    sigc::signal<void(const std::filesystem::path& dcim)>& inserted() { return inserted_; }

    /// The name of a card: that of its volume.
    static std::string nameOf(const std::filesystem::path& dcim);

private:
    void volumesChanged();

    const ports::Ports& ports_;
    std::shared_ptr<ports::WorkQueue> queue_;
    base::Published<Cards> cards_;
    sigc::signal<void(const std::filesystem::path&)> inserted_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
