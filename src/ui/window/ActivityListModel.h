#pragma once

#include "presentation/ActivityListing.h"

#include <QAbstractListModel>

namespace vellmark {

/// The rows of a listing for Qt's list. What changes is told row by row, so that the selection, the
/// current row and the place stay where they are.
class ActivityListModel : public QAbstractListModel {
public:
    ActivityListModel(Localization words, QObject* parent);

    ActivityListing& listing() { return listing_; }
    const ActivityListing& listing() const { return listing_; }
    /// To be called after the listing's rows have changed.
    void showRows();
    /// The same where nothing stays.
    void showOtherRows();
    void setNow(Instant now) { now_ = now; }

    const ActivityRow& row(int index) const { return rows_[static_cast<std::size_t>(index)]; }
    ActivityRowContent content(int index) const { return listing_.content(row(index), now_); }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    ActivityListing listing_;
    /// Those that the list knows of.
    std::vector<ActivityRow> rows_;
    Instant now_{};
};

} // namespace vellmark
