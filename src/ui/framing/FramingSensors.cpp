#include "ui/framing/FramingSensors.h"

#include "cameras/CameraCatalog.h"
#include "ui/kit/QtText.h"

#include <absl/strings/str_format.h>

namespace zenka::ui::FramingSensors {

namespace {

namespace SensorTable = cameras::SensorTable;

constexpr int bodysRow = 0;
constexpr int ownRow = 1;
constexpr int firstFormatRow = 2;

QString sensorName(std::string_view brand, const SensorTable::Row& row) {
    return qt(
        absl::StrFormat("%s%s, %.1f × %.1f mm", brand, row.name, row.sensor.widthMm, row.sensor.heightMm));
}

} // namespace

cameras::Sensor of(const cameras::FramingRecord& record, const std::string& model) {
    if (record.own)
        return *record.own;
    if (const auto* named = SensorTable::named(record.sensor))
        return named->sensor;
    const auto* bodys = SensorTable::forModel(model);
    return bodys ? bodys->sensor : SensorTable::formats().front().sensor;
}

QStringList names(const std::string& model) {
    const auto* bodys = SensorTable::forModel(model);
    QStringList names{bodys           ? QStringLiteral("Of the body: ") + qt(bodys->name)
                      : model.empty() ? QStringLiteral("Not chosen: full frame")
                                      : QStringLiteral("Of the body: not known, full frame"),
                      QStringLiteral("My own figures")};
    for (const auto& row : SensorTable::formats())
        names.append(sensorName("", row));
    // The table is in the order of the catalogue.
    auto row = SensorTable::models().begin();
    for (const auto& brand : cameras::CameraCatalog::byBrand())
        for (std::size_t i = 0; i < brand.models.size() && row != SensorTable::models().end(); ++i, ++row)
            names.append(sensorName(std::string(brand.name) + ' ', *row));
    return names;
}

int rowOf(const cameras::FramingRecord& record) {
    if (record.own)
        return ownRow;
    int row = firstFormatRow;
    for (const auto rows : {SensorTable::formats(), SensorTable::models()}) {
        for (const auto& each : rows) {
            if (each.name == record.sensor)
                return row;
            ++row;
        }
    }
    return bodysRow;
}

bool choose(int row, const std::string& model, cameras::FramingRecord& record) {
    const auto formats = SensorTable::formats();
    const auto models = SensorTable::models();
    const int last = firstFormatRow + static_cast<int>(formats.size() + models.size());
    if (row == rowOf(record) || row < 0 || row >= last)
        return false;
    const cameras::Sensor before = of(record, model);
    record.own.reset();
    record.sensor.clear();
    if (row == ownRow) {
        record.own = before;
    } else if (row >= firstFormatRow) {
        const auto at = static_cast<std::size_t>(row - firstFormatRow);
        record.sensor = at < formats.size() ? formats[at].name : models[at - formats.size()].name;
    }
    return true;
}

} // namespace zenka::ui::FramingSensors
