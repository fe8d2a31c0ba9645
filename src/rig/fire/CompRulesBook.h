#pragma once

#include "exposure/ExposureComp.h"
#include "ports/Ports.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/shared/RigLog.h"

#include <nlohmann/json_fwd.hpp>

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zenka::rig {

/// By which rules each camera may be compensated, kept from one session to the next. Rules belong to a body
/// by its serial number, so that they follow it from port to port, or to a token where no body tells one.
/// Main thread.
class CompRulesBook {
public:
    CompRulesBook(const ports::Ports& ports, RigLog& log, const CameraRoster& roster)
        : ports_(ports), log_(log), roster_(roster) {}

    /// The saved rules, else the usual ones.
    exposure::CompRules compRules(const std::string& token) const;
    /// A camera is compensated only once its rules have been saved.
    bool hasSavedCompRules(const std::string& token) const { return saved(token).has_value(); }
    void saveCompRules(const exposure::CompRules& rules, const std::string& token);

    /// All saved rules, by "serial:" with a serial number behind it, or "token:" with a name of a script.
    using AllRules = std::map<std::string, exposure::CompRules>;
    AllRules all() const;
    /// Takes rules in addition, and in the place of those of the same key.
    void merge(const AllRules& rules);
    /// What a key of such a map may be.
    static bool isKey(std::string_view key);

    /// A sentence on what cannot be kept; empty for rules that make sense.
    static std::string fault(const exposure::CompRules& rules);

    /// The token; an empty one stands for all.
    sigc::signal<void(const std::string& token)>& changed() { return changed_; }

private:
    std::string compRulesKey(const std::string& token) const;
    std::optional<exposure::CompRules> saved(const std::string& token) const;

    const ports::Ports& ports_;
    RigLog& log_;
    const CameraRoster& roster_;
    mutable std::map<std::string, std::optional<exposure::CompRules>> compRulesCache_; // by key
    sigc::signal<void(const std::string&)> changed_;
};

/// As they are kept: an object with a key for each field. Nothing for what is not one, whole.
nlohmann::json toJson(const exposure::CompRules& rules);
std::optional<exposure::CompRules> compRulesFrom(const nlohmann::json& json);
/// The same as a text.
std::optional<exposure::CompRules> decodeCompRules(std::string_view json);
std::string encodeCompRules(const exposure::CompRules& rules);

} // namespace zenka::rig
