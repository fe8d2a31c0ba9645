#pragma once

#include "ports/PlaceLookup.h"
#include "rig/site/SiteDesk.h"

#include <array>
#include <optional>
#include <string>

namespace zenka::ui {

/// A site as it is being typed. A text that cannot be read leaves the value as it was; its fault is told
/// when the typing is over, and goes as soon as the text can be read.
class SiteDraft {
public:
    enum class Field { lat, lon, elev, label, zone };

    explicit SiteDraft(const ports::PlaceLookup& places) : places_(places) {}

    /// Begins anew with a site.
    void take(rig::Site site);
    /// Moves to a point. Zone and label are looked up there, unless they were typed.
    void moveTo(double lat, double lon);
    void type(Field field, const std::string& text);
    void setElevation(double metres);
    /// Moves a number on by steps of a thousandth of a degree or a metre, within its range.
    void nudge(Field field, int steps);

    /// Looks at every field; true when there is no fault.
    bool check();

    /// What can be read so far. The zone is empty at sea, where none is known.
    const rig::Site& site() const { return site_; }
    const std::string& text(Field field) const { return at(field).text; }
    /// One sentence or empty.
    const std::string& fault(Field field) const { return at(field).fault; }
    /// Where the zone comes from.
    std::string zoneNote() const;

private:
    struct Typed {
        std::string text;
        std::string fault;
    };
    struct Reading {
        std::optional<double> value;
        std::string fault;
    };
    Typed& at(Field field) { return fields_[static_cast<std::size_t>(field)]; }
    const Typed& at(Field field) const { return fields_[static_cast<std::size_t>(field)]; }
    static Reading readAngle(const std::string& text, bool latitude);
    static Reading readElevation(const std::string& text);
    Reading read(Field field) const;
    bool typePair(const std::string& text);
    void typeNumber(Field field, const std::string& text, bool tellFault);
    void readZone(bool tellFault);
    void showPoint();
    void lookUp();
    void lookUpLabel();
    void lookUpZone();

    const ports::PlaceLookup& places_;
    rig::Site site_;
    std::array<Typed, 5> fields_;
    bool labelTyped_ = false;
    bool zoneTyped_ = false;
};

} // namespace zenka::ui
