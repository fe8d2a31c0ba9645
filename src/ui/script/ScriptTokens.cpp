#include "ui/script/ScriptTokens.h"

#include <QString>

#include <algorithm>
#include <array>

namespace zenka::ui {

namespace {

using Kind = ScriptToken::Kind;

enum class Form { take, ramp, cue, bracket, settings, loop, bare };

struct KnownCommand {
    QLatin1String name;
    Form form;
};

const std::array<KnownCommand, 16> commands{{{QLatin1String("TAKEPIC"), Form::take},
                                             {QLatin1String("TAKEBST"), Form::take},
                                             {QLatin1String("TAKEBKT"), Form::take},
                                             {QLatin1String("SETEXP"), Form::take},
                                             {QLatin1String("RAMPUP"), Form::ramp},
                                             {QLatin1String("RAMPDN"), Form::ramp},
                                             {QLatin1String("RAMPSUD"), Form::ramp},
                                             {QLatin1String("PLAY"), Form::cue},
                                             {QLatin1String("COMMAND"), Form::cue},
                                             {QLatin1String("BKTDATA"), Form::bracket},
                                             {QLatin1String("CAMSET"), Form::settings},
                                             {QLatin1String("FOR"), Form::loop},
                                             {QLatin1String("ENDFOR"), Form::bare},
                                             {QLatin1String("LVSTART"), Form::bare},
                                             {QLatin1String("LVSTOP"), Form::bare},
                                             {QLatin1String("CHGCSSL"), Form::bare}}};

bool isAloneMagnitude(QStringView field) {
    return field.compare(QLatin1String("MAGPRE"), Qt::CaseInsensitive) == 0 ||
           field.compare(QLatin1String("MAGPOST"), Qt::CaseInsensitive) == 0;
}

/// The kind of a field by its place in a line of a form.
Kind partOf(Form form, int field) {
    const bool timed = form == Form::take || form == Form::ramp || form == Form::cue;
    if (timed && field == 1)
        return Kind::reference;
    switch (form) {
    case Form::take: return field == 4 ? Kind::camera : field < 12 ? Kind::number : Kind::words;
    case Form::ramp: return field == 4 ? Kind::camera : field < 14 ? Kind::number : Kind::words;
    case Form::cue: return field < 4 ? Kind::number : Kind::words;
    case Form::settings: return field == 1 ? Kind::camera : Kind::number;
    case Form::loop: return field == 1 ? Kind::reference : Kind::number;
    case Form::bracket:
    case Form::bare: return Kind::number;
    }
    return Kind::words;
}

} // namespace

std::vector<ScriptToken> scriptTokens(QStringView line) {
    std::vector<ScriptToken> tokens;
    const QStringView text = line.trimmed();
    if (text.isEmpty())
        return tokens;
    const auto add = [&](Kind kind, QStringView piece) {
        if (!piece.isEmpty())
            tokens.push_back({kind, piece.data() - line.data(), piece.size()});
    };
    if (text.startsWith(u'#')) {
        add(Kind::comment, text);
        return tokens;
    }

    const KnownCommand* command = nullptr;
    int field = 0;
    for (qsizetype from = 0; from <= line.size(); ++field) {
        qsizetype comma = line.indexOf(u',', from);
        if (comma < 0)
            comma = line.size();
        const QStringView piece = line.sliced(from, comma - from).trimmed();
        from = comma + 1;
        if (field == 0) {
            const auto* found = std::ranges::find_if(commands, [&](const KnownCommand& known) {
                return piece.compare(known.name, Qt::CaseInsensitive) == 0;
            });
            command = found == commands.end() ? nullptr : found;
            add(command ? Kind::command : Kind::unknown, piece);
            if (!command)
                return tokens;
            continue;
        }
        const Kind kind = partOf(command->form, field);
        if (kind == Kind::words) { // they may hold commas
            add(kind, line.sliced(piece.data() - line.data()).trimmed());
            return tokens;
        }
        add(kind, piece);
        // A magnitude in a field of its own belongs to the reference.
        const bool signAhead = line.sliced(std::min(from, line.size())).trimmed().startsWith(u'+') ||
                               line.sliced(std::min(from, line.size())).trimmed().startsWith(u'-');
        if (kind == Kind::reference && isAloneMagnitude(piece) && !signAhead && from <= line.size()) {
            qsizetype end = line.indexOf(u',', from);
            if (end < 0)
                end = line.size();
            add(Kind::reference, line.sliced(from, end - from).trimmed());
            from = end + 1;
        }
    }
    return tokens;
}

} // namespace zenka::ui
