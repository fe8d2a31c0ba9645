#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QString>

#include <functional>
#include <vector>

namespace zenka::ui {

/// One thing that the user can ask for from the menu or by a key.
struct Command {
    QString id;
    QString menu;     ///< title of its menu, empty for a key alone
    QString text;     ///< as the menu shows it
    QString shortcut; ///< as QKeySequence reads it, empty for none
    std::function<void()> run;
    std::function<bool()> enabled; ///< empty: always
    QString whyOff;                ///< stands behind the text while it is not enabled
    bool standard = false;         ///< the focused text field has it already
};

/// Every command of the program, declared in one place (CommandList.cpp), in the order of the menus.
class Commands : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(QStringList menus READ menus CONSTANT)

public:
    enum Role { idRole = Qt::UserRole, menuRole, textRole, shortcutRole, enabledRole, standardRole };

    explicit Commands(QObject* parent) : QAbstractListModel(parent) {}

    void add(Command command);
    /// Why the last one added is not enabled when it is not.
    void explainLast(const QString& whyOff) { commands_.back().whyOff = whyOff; }
    const std::vector<Command>& all() const { return commands_; }

    Q_INVOKABLE void trigger(const QString& id);
    Q_INVOKABLE bool isEnabled(const QString& id) const;
    /// The rows of one menu.
    Q_INVOKABLE QVariantList inMenu(const QString& menu) const;
    QStringList menus() const;
    /// The menus' enabled states may have changed.
    void refresh();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void refreshed();

private:
    std::vector<Command> commands_;
};

} // namespace zenka::ui
