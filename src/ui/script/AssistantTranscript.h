#pragma once

#include "ui/kit/RowList.h"

#include <QString>

namespace zenka::services {
class ScriptAssistant;
}

namespace zenka::ui {

/// A message of the chat with the assistant, as it is shown.
struct AssistantRow {
    QString speaker; ///< "You", "Zenka" or "Assistant"
    QString words;
    QString check; ///< what came of the check of its script, empty for none

    friend bool operator==(const AssistantRow&, const AssistantRow&) = default;
};

/// The chat, oldest message first. Very long messages are cut, as laying them out would hold the window up.
class AssistantTranscript : public RowList<AssistantRow> {
    Q_OBJECT

public:
    enum Role { speakerRole = Qt::UserRole, wordsRole, checkRole };

    explicit AssistantTranscript(QObject* parent) : RowList(parent) {}

    void follow(const services::ScriptAssistant& assistant);
    /// Puts a message on the clipboard, as much of it as is shown.
    Q_INVOKABLE void copy(int row) const;

    QHash<int, QByteArray> roleNames() const override;

protected:
    QVariant valueOf(const AssistantRow& row, int role) const override;
};

/// A text for the screen: cut where it is longer than so many bytes.
QString cutText(const std::string& text, std::size_t most);

} // namespace zenka::ui
