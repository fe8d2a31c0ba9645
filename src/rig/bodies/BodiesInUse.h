#pragma once

#include <map>
#include <string>
#include <utility>

namespace zenka::rig {

/// Which bodies somebody has for himself. Nobody else asks them for anything meanwhile. Main thread; outlives
/// all uses.
class BodiesInUse {
public:
    enum class Task { testShot, measuring, reading };

    /// Lasts as long as it is held.
    class Use {
    public:
        Use() = default;
        Use(Use&& other) noexcept
            : bodies_(std::exchange(other.bodies_, nullptr)), id_(std::move(other.id_)) {}
        Use& operator=(Use&& other) noexcept {
            std::swap(bodies_, other.bodies_);
            std::swap(id_, other.id_);
            return *this;
        }
        ~Use() {
            if (bodies_)
                bodies_->tasks_.erase(id_);
        }

    private:
        friend class BodiesInUse;
        Use(BodiesInUse& bodies, std::string id) : bodies_(&bodies), id_(std::move(id)) {}

        BodiesInUse* bodies_ = nullptr;
        std::string id_;
    };

    /// A body that is not in use is, from now on.
    Use take(const std::string& id, Task task) {
        tasks_.emplace(id, task);
        return {*this, id};
    }
    bool has(const std::string& id) const { return tasks_.contains(id); }
    bool has(const std::string& id, Task task) const {
        const auto found = tasks_.find(id);
        return found != tasks_.end() && found->second == task;
    }

private:
    std::map<std::string, Task> tasks_; // by id
};

} // namespace zenka::rig
