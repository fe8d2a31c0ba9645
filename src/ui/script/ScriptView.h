#pragma once

#include "ports/Ports.h"
#include "rig/RigModel.h"
#include "ui/kit/DiagnosticsList.h"

#include <QObject>
#include <QPointer>
#include <QQuickTextDocument>
#include <QString>
#include <QUrl>
#include <QVariantList>

#include <vector>

class QTextDocument;

namespace zenka::ui {

/// The script for the editor: its text in a text area's document, its file, and what the compiler says.
/// A script that comes from elsewhere (a file, an example, the wizard) replaces the text as one step that
/// can be undone.
class ScriptView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QQuickTextDocument* document READ document WRITE setDocument NOTIFY documentChanged)
    Q_PROPERTY(QString name READ name NOTIFY fileChanged)
    Q_PROPERTY(QString fileWords READ fileWords NOTIFY fileChanged)
    Q_PROPERTY(bool edited READ edited NOTIFY fileChanged)
    Q_PROPERTY(bool isDefault READ isDefault NOTIFY fileChanged)
    Q_PROPERTY(bool hasUnsaved READ hasUnsaved NOTIFY fileChanged)
    Q_PROPERTY(QUrl folder READ folder NOTIFY fileChanged)
    Q_PROPERTY(QVariantList recent READ recent NOTIFY fileChanged)
    Q_PROPERTY(QVariantList examples READ examples CONSTANT)
    Q_PROPERTY(QString summary READ summary NOTIFY compiled)
    Q_PROPERTY(QString outside READ outside NOTIFY compiled)
    Q_PROPERTY(QString validated READ validated NOTIFY compiled)
    Q_PROPERTY(zenka::ui::DiagnosticsList* diagnostics READ diagnostics CONSTANT)
    Q_PROPERTY(bool colours READ colours NOTIFY sizeChanged)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)
    Q_PROPERTY(bool failed READ failed NOTIFY messageChanged)

public:
    /// Longer texts go without colours: each change of theme would colour all of them anew.
    static constexpr qsizetype mostColoured = 1'000'000;
    /// Frames further than this from first and last contact are not in the preview, seconds.
    static constexpr double previewMargin = 3600;

    ScriptView(rig::RigModel& rig, const ports::Ports& ports, QObject* parent);

    static void registerTypes();

    QQuickTextDocument* document() const { return document_; }
    void setDocument(QQuickTextDocument* document);

    QString name() const;
    /// Where the script is kept, and whether the text differs from that, in words.
    QString fileWords() const;
    bool edited() const { return desk_.edited().get(); }
    bool hasFile() const { return !desk_.scriptFile().get().empty(); }
    bool isDefault() const;
    bool hasUnsaved() const { return desk_.unsavedText().has_value(); }
    /// Where a file dialog begins.
    QUrl folder() const;
    /// Rows of path, name and folder.
    QVariantList recent() const;
    /// Rows of file and title.
    QVariantList examples() const;

    /// "312 frames on 2 cameras, 14 cues, no diagnostics"
    QString summary() const;
    /// Words on frames far from the eclipse, empty where there are none.
    QString outside() const;
    /// What came of the validation, empty when the script has changed since.
    QString validated() const;
    DiagnosticsList* diagnostics() { return &diagnostics_; }
    const DiagnosticsList& diagnosticsList() const { return diagnostics_; }
    bool colours() const { return size_ <= mostColoured; }

    /// What came of the last file operation.
    QString message() const { return message_; }
    bool failed() const { return failed_; }

    Q_INVOKABLE void newScript();
    Q_INVOKABLE void open(const QUrl& file);
    Q_INVOKABLE void openRecent(const QString& path);
    /// False when the script has no file yet, so that one must be asked for.
    Q_INVOKABLE bool save();
    Q_INVOKABLE void saveAs(const QUrl& file);
    /// A file of a folder by a typed name, which gets the suffix when it has none; empty for what can be no
    /// name.
    Q_INVOKABLE QUrl fileIn(const QUrl& folder, const QString& name, const QString& suffix) const;
    Q_INVOKABLE bool isThere(const QUrl& file) const;
    Q_INVOKABLE void loadExample(const QString& file);
    /// The wizard's script has taken the place of the one before.
    void noteWizard(const QString& name);
    void noteAssistant();
    Q_INVOKABLE void bringBackUnsaved();
    Q_INVOKABLE void setDefault(bool isDefault);
    /// Holds the script against the sky and the bodies; what is found joins the diagnostics.
    Q_INVOKABLE void validate();
    /// Stores the text at once.
    Q_INVOKABLE void keep() { desk_.keep(); }

    /// The place in the text of a row's first letter, and the row of a place.
    Q_INVOKABLE int positionOf(int row) const;
    Q_INVOKABLE int rowAt(int position) const;
    /// The editor's row of a line of the compiler's.
    Q_INVOKABLE int rowOfLine(int lineNo) const;

    rig::RigModel& rig() const { return rig_; }

Q_SIGNALS:
    void documentChanged();
    void fileChanged();
    void compiled();
    void sizeChanged();
    void messageChanged();
    /// The text was replaced as a whole; the cursor belongs to its start.
    void replaced();

private:
    /// A whole-text replacement on the document's stack of undo steps.
    struct Replacement {
        int steps = 0; ///< undo steps behind it
        std::size_t origin = 0;
    };

    QTextDocument* text() const;
    void show(const std::string& script);
    void edit();
    void followUndo();
    void tell(const QString& message, bool failed);
    void openPath(const std::string& path);
    void savePath(const std::string& path);

    rig::RigModel& rig_;
    rig::ScriptDesk& desk_;
    const ports::Ports& ports_;
    DiagnosticsList diagnostics_;
    QPointer<QQuickTextDocument> document_;
    bool showing_ = false; // the document follows the desk
    bool editing_ = false; // the desk follows the document
    qsizetype size_ = 0;
    std::vector<Replacement> replacements_; // ascending by steps; the first stands for the beginning
    int steps_ = 0;
    QString message_;
    bool failed_ = false;
};

} // namespace zenka::ui
