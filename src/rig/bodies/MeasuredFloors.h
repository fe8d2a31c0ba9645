#pragma once

#include "ports/Settings.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>

namespace zenka::rig {

/// What bodies were measured to hold, kept with the user's settings by camera model. A value that is
/// damaged, zero or less is no measurement. Main thread.
class MeasuredFloors {
public:
    struct BurstDepth {
        int frames = 0; ///< clean ones before the buffer was full
        double cadenceSec = 0;

        friend bool operator==(const BurstDepth&, const BurstDepth&) = default;
    };

    /// Whether long frames of this shutter were held at a cadence.
    struct LongFrameFloor {
        double shutterSec = 0;
        double cadenceSec = 0;
        bool held = false;

        friend bool operator==(const LongFrameFloor&, const LongFrameFloor&) = default;
    };

    /// All that is known of one model.
    struct OfModel {
        std::optional<double> floorSec;
        std::optional<double> sameFloorSec;
        std::optional<double> sustainedSec;
        std::optional<BurstDepth> burst;
        std::optional<LongFrameFloor> longFrames;

        friend bool operator==(const OfModel&, const OfModel&) = default;
    };

    explicit MeasuredFloors(ports::Settings& settings) : settings_(settings) {}

    /// The smallest clean spacing, in seconds, between frames that change a setting.
    std::optional<double> measuredFloor(const std::string& model) const;
    /// The same between identical frames.
    std::optional<double> measuredSameFloor(const std::string& model) const;
    /// The cadence, in seconds, that was held through a long burst.
    std::optional<double> sustainedFloor(const std::string& model) const;
    std::optional<BurstDepth> burstDepth(const std::string& model) const;
    std::optional<LongFrameFloor> longFrameFloor(const std::string& model) const;

    /// Every model that something was measured of.
    std::map<std::string, OfModel> all() const;
    /// Takes what was measured elsewhere, each in the place of the same measurement here, and reports
    /// nothing.
    void merge(const std::map<std::string, OfModel>& models);

    /// Each also reports an event "profile". A value that is no measurement is not kept.
    void saveMeasuredFloor(const std::string& model, double floorSec, bool same);
    void saveSustainedFloor(const std::string& model, double cadenceSec);
    void saveBurstDepth(const std::string& model, int cleanFrames, double cadenceSec);
    void saveLongFrameFloor(const std::string& model, double shutterSec, double cadenceSec, bool held);

    /// Throws away all measurements, once for a user: early versions stored some that nothing had measured.
    void discardFabricatedCadenceMeasurements();
    /// Throws away those of Olympus and OM System bodies, once for a user: they were taken with another
    /// trigger than is used now.
    void discardOlympusTriggerEraMeasurements();

    using Field = std::variant<std::string, std::int64_t, double, bool>;
    using Fields = std::map<std::string, Field>;
    /// An event worth reporting.
    std::function<void(const std::string& event, const Fields& fields)> report = [](const std::string&,
                                                                                    const Fields&) {};

private:
    std::optional<double> positive(const std::string& key) const;
    void saveFloor(const char* prefix, const std::string& model, double floorSec, const char* settings);
    bool keepBurstDepth(const std::string& model, const BurstDepth& depth);
    bool keepLongFrameFloor(const std::string& model, const LongFrameFloor& floor);
    void discard(const std::function<bool(const std::string& model)>& wanted);

    ports::Settings& settings_;
};

} // namespace zenka::rig
