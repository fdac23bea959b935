#include "ui/window/ActivityListModel.h"

#include "ui/Conversions.h"

#include <algorithm>

namespace vellmark {

ActivityListModel::ActivityListModel(Localization words, QObject* parent)
    : QAbstractListModel(parent), listing_(std::move(words)) {}

void ActivityListModel::showRows() {
    const std::vector<ActivityRow>& after = listing_.rows();
    const auto isSame = [](const ActivityRow& first, const ActivityRow& second) {
        return first.isSame(second);
    };
    const auto [oldEnd, newEnd] =
        std::mismatch(rows_.begin(), rows_.end(), after.begin(), after.end(), isSame);
    const auto head = static_cast<int>(oldEnd - rows_.begin());
    std::ptrdiff_t tail = 0;
    const std::ptrdiff_t most = std::min(rows_.end() - oldEnd, after.end() - newEnd);
    while (tail < most && isSame(*(rows_.end() - 1 - tail), *(after.end() - 1 - tail))) {
        ++tail;
    }
    const auto removed = static_cast<int>(rows_.end() - oldEnd - tail);
    const auto inserted = static_cast<int>(after.end() - newEnd - tail);
    if (removed > 0) {
        beginRemoveRows({}, head, head + removed - 1);
        rows_.erase(oldEnd, oldEnd + removed);
        endRemoveRows();
    }
    if (inserted > 0) {
        beginInsertRows({}, head, head + inserted - 1);
        rows_.insert(rows_.begin() + head, newEnd, newEnd + inserted);
        endInsertRows();
    }
    for (std::size_t index = 0; index < rows_.size(); ++index) {
        if (rows_[index] != after[index]) {
            rows_[index] = after[index];
            const QModelIndex changed = this->index(static_cast<int>(index));
            emit dataChanged(changed, changed);
        }
    }
}

void ActivityListModel::showOtherRows() {
    beginResetModel();
    rows_ = listing_.rows();
    endResetModel();
}

int ActivityListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant ActivityListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return qString(content(index.row()).text);
    case Qt::AccessibleTextRole:
        return qString(content(index.row()).accessibilityText);
    default:
        return {};
    }
}

Qt::ItemFlags ActivityListModel::flags(const QModelIndex& index) const {
    if (!index.isValid() || row(index.row()).kind == ActivityRow::Kind::day) {
        return Qt::ItemNeverHasChildren;
    }
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

} // namespace vellmark
