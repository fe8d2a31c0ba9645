#pragma once

#include <vector>

namespace zenka::rig {

/// How far behind their instants the frames of a run left. Milliseconds.
class LatenessMeter {
public:
    void note(double lateMs) { samples_.push_back(lateMs); }
    void clear() { samples_.clear(); }

    bool empty() const { return samples_.empty(); }
    double largest() const;
    /// The value that the given fraction (0 to 1) of the frames does not exceed; 0 without frames.
    double quantile(double fraction) const;

private:
    std::vector<double> samples_; // one a frame, so no more than the script has
};

} // namespace zenka::rig
