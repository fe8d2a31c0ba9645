#include "cameras/SensorTable.h"

#include "cameras/CameraCatalog.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace zenka;
namespace SensorTable = cameras::SensorTable;

TEST(SensorTable, everyModelOfTheCatalogueHasASensorOfSquarePixels) {
    std::size_t row = 0;
    for (const auto& brand : cameras::CameraCatalog::byBrand()) {
        for (const std::string_view model : brand.models) {
            ASSERT_LT(row, SensorTable::models().size());
            const auto& [name, sensor] = SensorTable::models()[row++];
            EXPECT_EQ(name, model) << "in the catalogue's order";
            EXPECT_TRUE(cameras::plausible(sensor)) << model;
            EXPECT_EQ(SensorTable::forModel(model), &SensorTable::models()[row - 1]) << model;
            EXPECT_NEAR(sensor.widthMm / sensor.widthPx * sensor.heightPx / sensor.heightMm, 1, 0.015)
                << model;
            // 3 to 9 thousandths of a millimetre: no digit was dropped
            EXPECT_NEAR(sensor.widthMm / sensor.widthPx, 0.006, 0.0031) << model;
        }
    }
    EXPECT_EQ(row, SensorTable::models().size());
    for (const auto& format : SensorTable::formats())
        EXPECT_TRUE(cameras::plausible(format.sensor)) << format.name;
}

TEST(SensorTable, aBodyIsKnownByEveryNameThatItGivesItself) {
    for (const auto& [told, model] : std::initializer_list<std::pair<const char*, const char*>>{
             {"Canon EOS R5m2", "EOS R5 II"},
             {"Canon EOS R5", "EOS R5"},
             {"Canon EOS 5D Mark IV", "EOS 5D Mark IV"},
             {"NIKON Z 6_2", "Z6 II"},
             {"Nikon Z 8", "Z8"},
             {"Nikon DSC D850", "D850"},
             {"ILCE-7RM5", "a7R V"},
             {"Sony Alpha-A7 III (PC Control)", "a7 III"},
             {"ILCE-1", "a1"},
             {"Panasonic DC-GH6", "DC-GH6"},
             {"GH5M2", "DC-GH5M2"},
             {"Fuji Fujifilm X-T5", "X-T5"},
             {"GFX100 II", "GFX 100 II"},
             {"Olympus E-M1MarkIII", "E-M1 Mark III"},
             {"OM-1MarkII", "OM-1 Mark II"},
             {"OM Digital Solutions OM-1", "OM-1"}}) {
        const auto* row = SensorTable::forModel(told);
        ASSERT_TRUE(row) << told;
        EXPECT_EQ(row->name, model) << told;
    }
    for (const char* stranger :
         {"", "USB PTP Class Camera", "Canon EOS R50", "NIKON Z 50", "ILCE-7M2", "Canon"})
        EXPECT_EQ(SensorTable::forModel(stranger), nullptr) << stranger;
}
