#pragma once

#include "cameras/FramingRecord.h"

#include <QStringList>

/// The list of sensors to choose one from: the body's own, figures of one's own, the formats, the models.
namespace zenka::ui::FramingSensors {

/// The sensor of a record for a body of a model, which may be empty; full frame where nothing is known.
cameras::Sensor of(const cameras::FramingRecord& record, const std::string& model);

QStringList names(const std::string& model);
int rowOf(const cameras::FramingRecord& record);
/// Puts a row of the list into a record; false when that changes nothing, or there is no such row.
bool choose(int row, const std::string& model, cameras::FramingRecord& record);

} // namespace zenka::ui::FramingSensors
