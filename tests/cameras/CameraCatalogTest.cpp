#include "cameras/CameraCatalog.h"

#include <gtest/gtest.h>

#include <set>

using namespace zenka;

// Two planning bodies of one rig must be told apart by their models until they have labels of their own.
TEST(CameraCatalog, everyModelIsThereOnceAndReadsAsItself) {
    std::set<std::string> seen;
    std::size_t models = 0;
    for (const auto& brand : cameras::CameraCatalog::byBrand()) {
        EXPECT_FALSE(brand.models.empty()) << brand.name;
        for (const std::string_view model : brand.models) {
            ++models;
            EXPECT_TRUE(seen.insert(std::string(model)).second) << model;
        }
    }
    EXPECT_EQ(models, 53U);
}
