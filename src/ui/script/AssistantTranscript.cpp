#include "ui/script/AssistantTranscript.h"

#include "services/ScriptAssistant.h"
#include "ui/kit/AppView.h"
#include "ui/kit/QtText.h"

#include <utility>
#include <vector>

namespace zenka::ui {

namespace {

constexpr std::size_t mostShownOfMessage = 16 << 10; ///< bytes

} // namespace

QString cutText(const std::string& text, std::size_t most) {
    if (text.size() <= most)
        return qt(text);
    std::size_t end = most;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return qt(std::string_view(text).substr(0, end)) +
           QStringLiteral("\n… (there is more; it is too long to be shown here)");
}

void AssistantTranscript::follow(const services::ScriptAssistant& assistant) {
    std::vector<AssistantRow> rows;
    for (const auto& message : assistant.messages().get()) {
        const bool answer = message.role == "assistant";
        rows.push_back({.speaker = answer                           ? QStringLiteral("Assistant")
                                   : assistant.isAutomatic(message) ? QStringLiteral("Zenka")
                                                                    : QStringLiteral("You"),
                        .words = cutText(assistant.shown(message), mostShownOfMessage).trimmed(),
                        .check = qt(assistant.check(message))});
    }
    setRows(std::move(rows));
}

void AssistantTranscript::copy(int row) const {
    if (row >= 0 && row < rowCount())
        AppView::copy(rows()[static_cast<std::size_t>(row)].words);
}

QHash<int, QByteArray> AssistantTranscript::roleNames() const {
    return {{speakerRole, "speaker"}, {wordsRole, "words"}, {checkRole, "check"}};
}

QVariant AssistantTranscript::valueOf(const AssistantRow& row, int role) const {
    switch (role) {
    case speakerRole: return row.speaker;
    case wordsRole: return row.words;
    case checkRole: return row.check;
    default: return {};
    }
}

} // namespace zenka::ui
