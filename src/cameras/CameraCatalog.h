#pragma once

#include <span>
#include <string_view>

namespace zenka::cameras {

/// The bodies offered for planning a rig with no hardware on the table.
namespace CameraCatalog {

struct Brand {
    std::string_view name;
    std::span<const std::string_view> models;
};

/// In the order of a menu.
std::span<const Brand> byBrand();

} // namespace CameraCatalog

} // namespace zenka::cameras
