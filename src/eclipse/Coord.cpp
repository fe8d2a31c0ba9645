#include "eclipse/Coord.h"

#include "base/Text.h"

#include <array>
#include <string>

namespace zenka::eclipse::Coord {

namespace {

/// −1 for a letter of the south or west, 1 for north or east, nothing for any other.
std::optional<double> signOf(char letter) {
    if (letter == 'S' || letter == 'W')
        return -1;
    if (letter == 'N' || letter == 'E')
        return 1;
    return std::nullopt;
}

} // namespace

std::optional<double> parse(std::string_view typed) {
    std::string text = base::uppered(base::trimmed(typed));
    if (text.empty())
        return std::nullopt;
    double sign = 1;
    if (const auto leading = signOf(text.front())) {
        sign = *leading;
        text.erase(0, 1);
    } else if (const auto trailing = signOf(text.back())) {
        sign = *trailing;
        text.pop_back();
    }
    // The typographic marks of degrees, minutes and seconds count like the plain ones.
    for (const std::string_view mark : {"°", "º", "'", "\"", "′", "″", "’", "”", "D", "M", ":"})
        text = base::replacedAll(text, mark, " ");
    text = base::replacedAll(text, ",", ".");
    text = base::replacedAll(text, base::minusSign, "-");
    std::string_view rest = base::trimmed(text);
    if (rest.starts_with('-'))
        sign = -sign;
    if (rest.starts_with('-') || rest.starts_with('+'))
        rest.remove_prefix(1);

    std::array<double, 3> parts{};
    std::size_t count = 0;
    for (const std::string_view piece : base::splitPieces(rest, ' ')) {
        const auto number = base::readNumber(piece);
        if (number && count < parts.size())
            parts[count++] = *number;
    }
    if (count == 0)
        return std::nullopt;
    return sign * (parts[0] + parts[1] / 60 + parts[2] / 3600);
}

} // namespace zenka::eclipse::Coord
