#include "analysis/HtmlText.h"

#include "base/Text.h"

namespace zenka::analysis {

namespace {

constexpr std::string_view replacement = "\uFFFD";

bool isControl(char c) {
    return (c >= 0 && c < ' ' && c != '\t' && c != '\n') || c == '\x7F';
}

} // namespace

std::string escaped(std::string_view text) {
    const bool isUtf8 = base::utf8Text(text).has_value();
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        switch (c) {
        case '&': result += "&amp;"; break;
        case '<': result += "&lt;"; break;
        case '>': result += "&gt;"; break;
        case '"': result += "&quot;"; break;
        case '\'': result += "&#39;"; break;
        default:
            if (isControl(c) || (!isUtf8 && (static_cast<unsigned char>(c) & 0x80U) != 0))
                result += replacement;
            else
                result += c;
        }
    }
    return result;
}

} // namespace zenka::analysis
