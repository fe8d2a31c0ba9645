#pragma once

#include <set>
#include <string>
#include <utility>

namespace zenka::rig {

/// Which bodies somebody has for himself: a test shot, a measurement, a reading. Nobody else asks them for
/// anything meanwhile. Main thread; outlives all uses.
class BodiesInUse {
public:
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
                bodies_->ids_.erase(id_);
        }

    private:
        friend class BodiesInUse;
        Use(BodiesInUse& bodies, std::string id) : bodies_(&bodies), id_(std::move(id)) {}

        BodiesInUse* bodies_ = nullptr;
        std::string id_;
    };

    /// A body that is not in use is, from now on.
    Use take(const std::string& id) {
        ids_.insert(id);
        return {*this, id};
    }
    bool has(const std::string& id) const { return ids_.contains(id); }

private:
    std::set<std::string> ids_;
};

} // namespace zenka::rig
