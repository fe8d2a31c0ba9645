#pragma once

#include "script/ZenkaScript.h"

#include <QAbstractListModel>

#include <map>
#include <string_view>
#include <vector>

namespace zenka::ui {

/// Where the compiler's lines stand in the editor. Some characters end a line for the one and not for the
/// other, so the numbers of the two differ behind them.
class LineMap {
public:
    LineMap() = default;
    explicit LineMap(std::string_view text);

    /// The editor's row, from 0, of a compiler's line, from 1.
    int rowOf(int lineNo) const;

private:
    std::vector<int> extraEnds_; // ascending numbers of the compiler's lines that end within a row
};

/// What the compiler and the validator say of a script, by line. What they say of one line in the same words
/// in each round of a loop is one row with a count.
class DiagnosticsList : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY changed)

public:
    enum Role { rowRole = Qt::UserRole, lineRole, symbolRole, wordRole, messageRole, errorRole };

    explicit DiagnosticsList(QObject* parent) : QAbstractListModel(parent) {}

    void take(const std::vector<script::ScriptDiag>& diagnostics, const LineMap& lines);

    int count() const { return static_cast<int>(rows_.size()); }
    int errors() const { return errors_; }
    int warnings() const { return count() - errors_; }

    /// 2 for a row of the editor with an error, 1 with a warning, 0 without either.
    int severityOf(int row) const;
    /// What there is to say about a row of the editor, one sentence a line.
    QString messageOf(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void changed();

private:
    static constexpr int wholeScript = -1;

    struct Row {
        int row = 0; ///< of the editor; wholeScript for what stands in no line
        bool error = false;
        QString message;
        int times = 1;
    };

    std::vector<Row> rows_; // ascending by row
    int errors_ = 0;
};

} // namespace zenka::ui
