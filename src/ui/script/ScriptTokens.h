#pragma once

#include <QStringView>

#include <vector>

namespace zenka::ui {

/// A piece of a script line that the editor shows in a manner of its own.
struct ScriptToken {
    enum class Kind { command, unknown, reference, camera, number, words, comment };

    Kind kind = Kind::words;
    qsizetype start = 0; ///< in QChars
    qsizetype length = 0;

    friend bool operator==(const ScriptToken&, const ScriptToken&) = default;
};

/// The pieces of one line of the script language, in order. Looks at form alone; whether a line makes sense
/// is the compiler's to say.
std::vector<ScriptToken> scriptTokens(QStringView line);

} // namespace zenka::ui
