#include "script/Lines.h"

#include "base/Text.h"

namespace zenka::script {

namespace {

struct Newline {
    std::size_t at = std::string_view::npos;
    std::size_t length = 0;
};

Newline findNewline(std::string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (c >= '\n' && c <= '\r') // LF, VT, FF, CR
            return {at, 1};
        const std::string_view here = text.substr(at, 3);
        if (c == '\xC2' && here.starts_with("\u0085")) // NEL
            return {at, 2};
        if (c == '\xE2' && (here == "\u2028" || here == "\u2029")) // LS, PS
            return {at, 3};
    }
    return {};
}

} // namespace

std::optional<std::string_view> LineReader::next() {
    if (!rest_)
        return std::nullopt;
    ++lineNo_;
    const Newline newline = findNewline(*rest_);
    const std::string_view line = rest_->substr(0, newline.at);
    if (newline.length == 0)
        rest_.reset();
    else
        rest_->remove_prefix(newline.at + newline.length);
    return base::trimmed(line);
}

Fields splitFields(std::string_view line) {
    Fields fields = base::split(line, ',');
    for (std::string_view& field : fields)
        field = base::trimmed(field);
    return fields;
}

std::string joinedTail(const Fields& fields, std::size_t from) {
    if (fields.size() <= from)
        return std::string(fields.back());
    std::string text(fields[from]);
    for (std::size_t i = from + 1; i < fields.size(); ++i) {
        text += ',';
        text += fields[i];
    }
    return text;
}

} // namespace zenka::script
