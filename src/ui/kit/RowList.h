#pragma once

#include <QAbstractListModel>

#include <utility>
#include <vector>

namespace zenka::ui {

/// A list of records. A row that stays is not made anew when others change, so that its item keeps the
/// keyboard. A derived class says which roles there are.
template <typename Row>
class RowList : public QAbstractListModel {
public:
    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows_.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        return index.isValid() && index.row() < rowCount()
                   ? valueOf(rows_[static_cast<std::size_t>(index.row())], role)
                   : QVariant();
    }
    const std::vector<Row>& rows() const { return rows_; }

protected:
    using QAbstractListModel::QAbstractListModel;

    virtual QVariant valueOf(const Row& row, int role) const = 0;

    /// By their places: the last ones come and go, the others change.
    void setRows(std::vector<Row> rows) {
        const int before = rowCount();
        const int now = static_cast<int>(rows.size());
        if (now < before) {
            beginRemoveRows({}, now, before - 1);
            rows_.resize(rows.size());
            endRemoveRows();
        }
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            if (rows_[i] == rows[i])
                continue;
            rows_[i] = std::move(rows[i]);
            const int at = static_cast<int>(i);
            Q_EMIT dataChanged(index(at), index(at));
        }
        if (now > before) {
            beginInsertRows({}, before, now - 1);
            rows_.insert(rows_.end(), std::make_move_iterator(rows.begin() + before),
                         std::make_move_iterator(rows.end()));
            endInsertRows();
        }
    }

private:
    std::vector<Row> rows_;
};

} // namespace zenka::ui
