#include "ui/script/ScriptHighlighter.h"

#include <QSyntaxHighlighter>
#include <QtQml>

namespace zenka::ui {

class ScriptHighlighter::Painter final : public QSyntaxHighlighter {
public:
    Painter(QTextDocument* document, const ScriptHighlighter& colours)
        : QSyntaxHighlighter(document), colours_(colours) {}

protected:
    void highlightBlock(const QString& text) override {
        for (const ScriptToken& token : scriptTokens(text))
            setFormat(static_cast<int>(token.start), static_cast<int>(token.length), formatOf(token.kind));
    }

private:
    QTextCharFormat formatOf(ScriptToken::Kind kind) const {
        using Kind = ScriptToken::Kind;
        QTextCharFormat format;
        switch (kind) {
        case Kind::command:
            format.setForeground(colours_.command_);
            format.setFontWeight(QFont::Bold);
            break;
        case Kind::unknown:
            format.setForeground(colours_.unknown_);
            format.setFontWeight(QFont::Bold);
            format.setFontUnderline(true);
            break;
        case Kind::reference: format.setForeground(colours_.command_); break;
        case Kind::camera:
            format.setForeground(colours_.plain_);
            format.setFontWeight(QFont::Bold);
            break;
        case Kind::number: format.setForeground(colours_.plain_); break;
        case Kind::words: format.setForeground(colours_.quiet_); break;
        case Kind::comment:
            format.setForeground(colours_.quiet_);
            format.setFontItalic(true);
            break;
        }
        return format;
    }

    const ScriptHighlighter& colours_;
};

ScriptHighlighter::ScriptHighlighter(QObject* parent) : QObject(parent) {
    connect(this, &ScriptHighlighter::changed, this, &ScriptHighlighter::update, Qt::QueuedConnection);
}

ScriptHighlighter::~ScriptHighlighter() = default;

void ScriptHighlighter::registerTypes() {
    qmlRegisterType<ScriptHighlighter>("Zenka", 1, 0, "ScriptHighlighter");
}

void ScriptHighlighter::setDocument(QQuickTextDocument* document) {
    if (document_ == document)
        return;
    document_ = document;
    painter_.reset();
    Q_EMIT changed();
}

void ScriptHighlighter::update() {
    if (!document_ || !active_) {
        painter_.reset();
        return;
    }
    if (painter_ && painter_->document() == document_->textDocument())
        painter_->rehighlight();
    else
        painter_ = std::make_unique<Painter>(document_->textDocument(), *this);
}

} // namespace zenka::ui
