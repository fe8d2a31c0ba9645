#include "eclipse/Coord.h"

#include "base/Text.h"

#include <array>
#include <string>

namespace zenka::eclipse::Coord {

namespace {

/// −1 for a letter of the south or west, 1 for north or east, 0 for any other.
double signOf(char letter) {
    if (letter == 'S' || letter == 'W')
        return -1;
    return letter == 'N' || letter == 'E' ? 1 : 0;
}

/// Takes the letter of a direction off the beginning of a text, else off its end: its sign, 1 without one.
double takenSign(std::string& text) {
    if (const double leading = signOf(text.front()); leading != 0) {
        text.erase(0, 1);
        return leading;
    }
    const double trailing = signOf(text.back());
    if (trailing == 0)
        return 1;
    text.pop_back();
    return trailing;
}

} // namespace

std::optional<double> parse(std::string_view typed) {
    std::string text = base::uppered(base::trimmed(typed));
    if (text.empty())
        return std::nullopt;
    double sign = takenSign(text);
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
