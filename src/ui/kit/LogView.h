#pragma once

#include "rig/RigModel.h"

#include <QAbstractListModel>
#include <QString>

#include <deque>
#include <vector>

namespace zenka::ui {

/// A line of the operator's log, taken apart for the eye.
struct LogLine {
    QString symbol; ///< one shape without a colour of its own; may be empty
    QString state;  ///< "fired", "dropped", ... the shape in a word; empty where there is none
    QString text;   ///< the rest

    friend bool operator==(const LogLine&, const LogLine&) = default;
};

LogLine logLine(const QString& line);

/// The operator's log, newest first, as far as a filter lets it through. Selected lines stay selected while
/// new ones come.
class LogView : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(QString filter READ filter WRITE setFilter NOTIFY filterChanged)
    Q_PROPERTY(QString countText READ countText NOTIFY counted)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY counted)
    Q_PROPERTY(int selected READ selected NOTIFY counted)

public:
    enum Role { lineRole = Qt::UserRole, symbolRole, stateRole, textRole, selectedRole };

    LogView(rig::RigModel& rig, QObject* parent);

    QString filter() const { return filter_; }
    void setFilter(const QString& filter);
    /// "12 of 200 lines"
    QString countText() const;
    /// What to say where there is no line.
    QString emptyText() const;
    int selected() const;

    /// Selects a row alone; turns one over; or selects from the row selected before to this one.
    Q_INVOKABLE void select(int row);
    Q_INVOKABLE void toggle(int row);
    Q_INVOKABLE void selectTo(int row);
    Q_INVOKABLE void selectAll();
    Q_INVOKABLE void selectNone();

    /// Puts the selected lines, or all that the filter lets through where none is, on the clipboard, oldest
    /// first.
    Q_INVOKABLE void copy() const;
    QString copyText() const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void filterChanged();
    void counted();

private:
    struct Row {
        QString line;
        LogLine parts;
        bool selected = false;
    };

    bool passes(const QString& line) const;
    void add(const std::string& line);
    void selectRange(int from, int to, bool only);
    bool has(int row) const { return row >= 0 && row < rowCount(); }

    rig::RigModel& rig_;
    QString filter_;
    std::deque<Row> rows_; // those that pass, newest first
    int anchor_ = -1;      // where a range of selected rows begins
};

} // namespace zenka::ui
