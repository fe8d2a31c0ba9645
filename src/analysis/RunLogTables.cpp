#include "analysis/RunLogTables.h"

#include "analysis/CsvRows.h"
#include "base/Text.h"
#include "exposure/ExposureScales.h"

#include <algorithm>
#include <array>

namespace zenka::analysis {

namespace {

/// Calls a function with the named columns of each row of a camera; not at all when one of them is missing.
/// The first name is the camera's column.
template <std::size_t Count, typename Function>
void forRowsOf(const std::string& camera, std::string_view csv,
               const std::array<std::string_view, Count>& names, const Function& look) {
    CsvRows rows(csv);
    std::array<std::size_t, Count> columns{};
    for (std::size_t i = 0; i < Count; ++i) {
        const auto column = rows.column(names[i]);
        if (!column)
            return;
        columns[i] = *column;
    }
    while (const auto* row = rows.next()) {
        if ((*row)[columns[0]] != camera)
            continue;
        std::array<std::string_view, Count> fields;
        for (std::size_t i = 0; i < Count; ++i)
            fields[i] = (*row)[columns[i]];
        look(fields);
    }
}

/// Sets the shutter from its label; false for a text that is none.
bool readShutter(std::string_view label, LoggedExposure& exposure) {
    exposure.bulb = label == "BULB";
    if (exposure.bulb || label == "-")
        return true;
    const auto seconds = exposure::readShutterChoice(label);
    exposure.shutterSec = seconds.value_or(0);
    return seconds && *seconds > 0;
}

} // namespace

SoftwareOK RunLogTables::parseRunLogVerdict(std::string_view csv, const std::string& camera) {
    SoftwareOK verdict;
    forRowsOf(camera, csv, std::to_array<std::string_view>({"camera_token", "offset_sec", "result"}),
              [&](const auto& fields) {
                  const auto offset = base::readNumber(fields[1]);
                  if (!offset)
                      return;
                  bool& good = verdict[RunAnalysis::timeKey(*offset)];
                  good = good || fields[2] == "ok";
              });
    return verdict;
}

std::map<int, LoggedExposure> RunLogTables::parseRunLogCompensated(std::string_view csv,
                                                                   const std::string& camera) {
    std::map<int, LoggedExposure> compensated;
    forRowsOf(camera, csv,
              std::to_array<std::string_view>(
                  {"camera_token", "offset_sec", "iso", "f_number", "shutter", "comp_ev"}),
              [&](const auto& fields) {
                  const auto offset = base::readNumber(fields[1]);
                  const auto iso = base::readInteger(fields[2]);
                  const auto aperture = base::readNumber(fields[3]);
                  const auto stops = base::readInteger(fields[5]);
                  if (!offset || !iso || !aperture || stops.value_or(0) == 0)
                      return;
                  LoggedExposure exposure{.iso = *iso, .aperture = *aperture};
                  if (readShutter(fields[4], exposure))
                      compensated[RunAnalysis::timeKey(*offset)] = exposure;
              });
    return compensated;
}

std::vector<script::Capture> RunLogTables::withLogged(std::vector<script::Capture> captures,
                                                      const std::map<int, LoggedExposure>& logged) {
    if (logged.empty())
        return captures;
    for (script::Capture& capture : captures) {
        const auto found = logged.find(RunAnalysis::timeKey(capture.offsetSec));
        if (found == logged.end())
            continue;
        capture.iso = found->second.iso;
        capture.aperture = found->second.aperture;
        capture.shutterSec = found->second.shutterSec;
        capture.bulb = found->second.bulb;
    }
    return captures;
}

RunLogMatcher::RunLogMatcher(std::string camera, const std::vector<script::Capture>& expected)
    : camera_(std::move(camera)) {
    keys_.reserve(expected.size());
    for (const script::Capture& capture : expected)
        keys_.push_back(RunAnalysis::timeKey(capture.offsetSec));
    std::ranges::sort(keys_);
    const auto repeated = std::ranges::unique(keys_);
    keys_.erase(repeated.begin(), repeated.end());
}

void RunLogMatcher::look(const std::string& name, std::string_view csv) {
    SoftwareOK verdict = RunLogTables::parseRunLogVerdict(csv, camera_);
    const auto known = static_cast<int>(std::ranges::count_if(
        verdict, [&](const auto& row) { return std::ranges::binary_search(keys_, row.first); }));
    if (known == 0)
        return;
    if (best_ && known <= best_->known) {
        others_.push_back(name);
        return;
    }
    if (best_)
        others_.push_back(best_->name);
    best_ = MatchedLog{.name = name,
                       .verdict = std::move(verdict),
                       .compensated = RunLogTables::parseRunLogCompensated(csv, camera_),
                       .known = known};
}

} // namespace zenka::analysis
