#include "ui/Commands.h"

#include <QVariantMap>

#include <algorithm>
#include <utility>

namespace zenka::ui {

namespace {

bool isOn(const Command& command) {
    return !command.enabled || command.enabled();
}

} // namespace

void Commands::add(Command command) {
    const int row = static_cast<int>(commands_.size());
    beginInsertRows({}, row, row);
    commands_.push_back(std::move(command));
    endInsertRows();
}

void Commands::trigger(const QString& id) {
    const auto found = std::ranges::find(commands_, id, &Command::id);
    if (found != commands_.end() && found->run && isOn(*found))
        found->run();
}

bool Commands::isEnabled(const QString& id) const {
    const auto found = std::ranges::find(commands_, id, &Command::id);
    return found != commands_.end() && isOn(*found);
}

QVariantList Commands::inMenu(const QString& menu) const {
    QVariantList rows;
    for (const Command& command : commands_) {
        if (command.menu == menu)
            rows.append(QVariantMap{{QStringLiteral("id"), command.id},
                                    {QStringLiteral("text"), command.text},
                                    {QStringLiteral("shortcut"), command.shortcut},
                                    {QStringLiteral("whyOff"), command.whyOff},
                                    {QStringLiteral("enabled"), isOn(command)}});
    }
    return rows;
}

QStringList Commands::menus() const {
    QStringList titles;
    for (const Command& command : commands_) {
        if (!command.menu.isEmpty() && !titles.contains(command.menu))
            titles.append(command.menu);
    }
    return titles;
}

void Commands::refresh() {
    if (!commands_.empty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), {enabledRole});
    Q_EMIT refreshed();
}

int Commands::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(commands_.size());
}

QVariant Commands::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Command& command = commands_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case idRole: return command.id;
    case menuRole: return command.menu;
    case Qt::DisplayRole:
    case textRole: return command.text;
    case shortcutRole: return command.shortcut;
    case enabledRole: return isOn(command);
    case standardRole: return command.standard;
    default: return {};
    }
}

QHash<int, QByteArray> Commands::roleNames() const {
    return {{idRole, "commandId"},      {menuRole, "menu"},         {textRole, "text"},
            {shortcutRole, "shortcut"}, {enabledRole, "isEnabled"}, {standardRole, "standard"}};
}

} // namespace zenka::ui
