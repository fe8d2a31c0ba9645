#pragma once

#include "base/Text.h"

#include <QString>
#include <QStringList>

#include <string>
#include <string_view>
#include <vector>

/// The engine's UTF-8 texts as Qt has them.
namespace zenka::ui {

inline QString qt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline QStringList qt(const std::vector<std::string>& list) {
    QStringList texts;
    texts.reserve(static_cast<qsizetype>(list.size()));
    for (const std::string& text : list)
        texts.append(qt(text));
    return texts;
}

/// "1 frame", "2 frames"
inline QString counted(qsizetype count, const char* word) {
    return qt(base::counted(count, word));
}

} // namespace zenka::ui
