#pragma once

#include "cameras/CameraControl.h"

#include <array>
#include <string>
#include <string_view>

/// The settings of a shot as they are typed: "100", "8", "1/500". A blank one, "-" and "auto" leave the
/// body's own.
namespace zenka::ui::ExposureFields {

enum class Field { iso, aperture, shutter };
inline constexpr std::array<Field, 3> all{Field::iso, Field::aperture, Field::shutter};

/// The number in what was typed, with a point: without blanks and a word (in small letters) before or behind
/// it.
std::string bare(std::string_view text, std::string_view before, std::string_view behind);
/// The same of an f-number: "5.6" of "f/5,6".
std::string bareAperture(std::string_view text);

struct Reading {
    double value = 0;  ///< 0: the body's own
    std::string fault; ///< a sentence; empty where the text can be read

    friend bool operator==(const Reading&, const Reading&) = default;
};

/// ISO as a whole number, an f-number, or seconds. Takes what people paste as well: "ISO 100", "f/5,6", "2
/// s".
Reading read(Field field, std::string_view text);

/// A setting as one would type it; empty for the body's own.
std::string textOf(Field field, const cameras::Shot& shot);

/// The standard value so many steps up or down from what is typed; a common one where nothing can be read.
std::string nudged(Field field, std::string_view text, int steps);

} // namespace zenka::ui::ExposureFields
