#pragma once

#include "ports/UsbBus.h"

#include <string>
#include <string_view>

namespace zenka::cameras {

/// Telling Sony bodies from others, and each by the several names that it goes by.
namespace SonyNames {

/// The model in the form that all its names have in common: "Sony Alpha-A7R III (PC Control)", "ILCE-7RM3"
/// and "a7R III" are "7rm3". Empty for a text that names no model.
std::string sonyModelKey(std::string_view text);

/// Whether what gphoto2 lists is a Sony body: by the USB device at the port where there is one that tells,
/// else by the model.
bool gphotoBodyIsSony(ports::UsbBus& bus, std::string_view model, std::string_view port);

} // namespace SonyNames

} // namespace zenka::cameras
