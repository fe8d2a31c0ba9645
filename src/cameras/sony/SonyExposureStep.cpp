#include "cameras/sony/SonyExposureStep.h"

#include "cameras/sony/SonyProperties.h"

#include <cmath>
#include <optional>

namespace zenka::cameras {

namespace {

constexpr double sameValue = 1e-7;
constexpr base::Seconds beforeRetry{0.2};
constexpr int mostSnapRereads = 6;

bool same(double left, double right) {
    return std::abs(left - right) <= sameValue;
}

/// The settings of one shot, one after another.
class ExposureStep {
public:
    ExposureStep(const SonyDevice& device, SonyExposureMemory& memory)
        : device_(device), cache_(memory.cache), candidates_(memory.candidates),
          evEverWritten_(memory.evEverWritten) {}

    void setAperture(double fNumber) {
        if (!(fNumber > 0) || (cache_.hasAperture && same(cache_.aperture, fNumber)))
            return;
        const auto offered = snapped([&] { return SonyExposure::snapAperture(fNumber, candidates_); });
        cache_.hasAperture = send(SonyProperties::fNumber, SonyProperties::uint16Array,
                                  offered.value_or(SonyExposure::apertureCode(fNumber)));
        cache_.aperture = fNumber;
    }

    void setShutter(double seconds) {
        if (!(seconds >= 0) || (cache_.hasShutter && same(cache_.shutter, seconds)))
            return;
        std::int64_t code = 0; // bulb
        double sent = 0;
        if (seconds > 0) {
            const auto offered = snapped([&] { return SonyExposure::snapShutter(seconds, candidates_); });
            code = offered.value_or(SonyExposure::shutterCode(seconds));
            sent = offered ? SonyExposure::shutterSeconds(*offered).value_or(seconds) : -seconds;
        }
        cache_.lastSentShutter = sent;
        cache_.hasShutter = send(SonyProperties::shutterSpeed, SonyProperties::uint32Array, code);
        cache_.shutter = seconds;
    }

    void setIso(std::int32_t iso) {
        if (iso < 1 || (cache_.hasIso && cache_.iso == iso))
            return;
        const auto offered = snapped([&] { return SonyExposure::snapIso(iso, candidates_); });
        cache_.hasIso = send(SonyProperties::iso, SonyProperties::uint32Array, offered.value_or(iso));
        cache_.iso = iso;
    }

    /// A body that never saw a compensation is left alone; one that did is brought back to 0.
    void setExpComp(double stops) {
        if (!std::isfinite(stops) || (stops == 0 && !cache_.hasExpComp && !evEverWritten_))
            return;
        if (cache_.hasExpComp && same(cache_.expComp, stops))
            return;
        constexpr std::int64_t bits16 = 0xFFFF;
        const std::int64_t code = SonyExposure::snapExpComp(stops, candidates_);
        cache_.hasExpComp = send(SonyProperties::exposureBias, SonyProperties::int16Array, code & bits16);
        cache_.expComp = stops;
        if (cache_.hasExpComp && stops != 0)
            evEverWritten_ = true;
    }

    bool allTaken() const { return allTaken_; }

private:
    /// What the body offers changes with lens and mode, so a request that is far from all of it has the
    /// lists read anew, some times in a session.
    template <typename Snap>
    std::optional<std::int64_t> snapped(Snap snap) {
        auto offered = snap();
        if (offered || candidates_.snapRereads >= mostSnapRereads)
            return offered;
        ++candidates_.snapRereads;
        device_.readCandidates(candidates_);
        return snap();
    }

    bool send(std::uint32_t code, std::uint32_t type, std::int64_t value) {
        const auto bits = static_cast<std::uint64_t>(value);
        if (device_.setProperty(code, type, bits))
            return true;
        if (!paused_)
            device_.waits().pause(beforeRetry);
        paused_ = true; // once for a shot: the next may be due
        if (device_.setProperty(code, type, bits))
            return true;
        allTaken_ = false;
        return false;
    }

    const SonyDevice& device_;
    SonyExpoCache& cache_;
    SonyCandidates& candidates_;
    bool& evEverWritten_;
    bool paused_ = false;
    bool allTaken_ = true;
};

} // namespace

bool setSonyExposure(const SonyDevice& device, const SonyExposureRequest& request,
                     SonyExposureMemory& memory) {
    device.completeCandidates(memory.candidates);
    ExposureStep step(device, memory);
    step.setAperture(request.aperture);
    step.setShutter(request.shutterSec);
    step.setIso(request.iso);
    step.setExpComp(request.expComp);
    return step.allTaken();
}

} // namespace zenka::cameras
