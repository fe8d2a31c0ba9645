#pragma once

#include "script/Lines.h"
#include "script/ZenkaScript.h"

#include <optional>
#include <string>
#include <string_view>

namespace zenka::script {

/// A field read as a number. What is no number has a default by the field; a number that is infinite,
/// "nan" or beyond what its field can hold is a slip that must be told.
struct FieldNumber {
    enum class Kind { none, value, outOfRange };
    Kind kind = Kind::none;
    double value = 0; ///< with Kind::value, finite

    friend bool operator==(const FieldNumber&, const FieldNumber&) = default;
};

/// Reads a whole text as a decimal floating number with optional exponent. A number too small for a
/// double reads as 0.
FieldNumber readFieldNumber(std::string_view text);

/// As ZenkaScript::parseTimeMMSS, and Kind::none for a text with no piece.
FieldNumber readTime(std::string_view text);

/// As ZenkaScript::parseShutter; nothing for a value out of range.
std::optional<ZenkaScript::Shutter> readShutter(std::string_view text);

/// Reads the fields of one line by number. The first value that cannot stand becomes the line's fault.
class FieldReader {
public:
    /// consequence ends the fault's sentence: "line skipped".
    FieldReader(const Fields& fields, std::string_view consequence)
        : fields_(fields), consequence_(consequence) {}

    std::string_view text(std::size_t index, std::string_view otherwise) const;
    double number(std::size_t index, std::string_view name, double otherwise);
    /// A number cut towards zero.
    int whole(std::size_t index, std::string_view name, int otherwise);
    /// As number and whole, with 0 for "AUTO", "-" and a blank field.
    double numberOrAuto(std::size_t index, std::string_view name, double otherwise);
    int wholeOrAuto(std::size_t index, std::string_view name, int otherwise);
    double time(std::size_t index);
    ZenkaScript::Shutter shutter(std::size_t index, std::string_view otherwise);
    /// A number in the text of a field that is not the whole field; field names what the fault quotes.
    double numberIn(std::string_view text, std::string_view field, std::string_view name, double otherwise);

    /// Empty while all is well.
    const std::string& fault() const { return fault_; }

private:
    bool isAuto(std::size_t index) const;
    int cut(std::size_t index, std::string_view name, double value);
    void outOfRange(std::string_view name, std::string_view value);
    void fail(std::string sentence);

    const Fields& fields_;
    std::string_view consequence_;
    std::string fault_;
};

} // namespace zenka::script
