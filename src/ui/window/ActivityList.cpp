#include "ui/window/ActivityList.h"

#include "ui/Conversions.h"
#include "ui/ProviderLogo.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/OverlayBar.h"
#include "ui/kit/Theme.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>

namespace vellmark {

namespace {

using kit::ColorRole;
using Level = ActivityEntry::Level;

constexpr int rowHeight = 30;
constexpr int lineHeight = kit::style::text.lineHeight;
constexpr int indent = 16;
constexpr int logoSide = 16;
constexpr int logoGap = 8;
constexpr int markSide = 14;
constexpr int chevronSide = 10;
constexpr int chevronGap = 8;
/// From the row's edge to the ground of one that is pointed at or selected.
constexpr int groundInset = 2;

const kit::TextStyle& textStyle(const ActivityRowContent& content) {
    return content.level == Level::error ? kit::style::value : kit::style::text;
}

/// Where the text of a row stands; `width` is the row's.
QRect textBox(const ActivityRowContent& content, int width) {
    const int left = ActivityList::textLeft + indent * content.depth;
    const int right = width - ActivityList::padding - chevronSide - chevronGap;
    return {left, 0, std::max(right - left, 0), rowHeight};
}

bool isShortened(const ActivityRowContent& content, int width) {
    return kit::textWidth(qString(content.text), textStyle(content)) >
           textBox(content, width).width();
}

/// A chevron to the right, or down where the row is unfolded.
void drawChevron(QPainter& painter, QPointF middle, bool isUnfolded) {
    const QRectF box(middle.x() - chevronSide / 2.0, middle.y() - chevronSide / 2.0, chevronSide,
                     chevronSide);
    kit::drawIcon(painter, box, "chevron.right", kit::color(ColorRole::ink2), isUnfolded ? 90 : 0);
}

} // namespace

class ActivityList::Painter : public QStyledItemDelegate {
public:
    explicit Painter(ActivityList* list) : QStyledItemDelegate(list), list_(list) {}

    QSize sizeHint(const QStyleOptionViewItem& /*option*/,
                   const QModelIndex& index) const override {
        const ActivityRow& row = list_->model_->row(index.row());
        if (row.kind != ActivityRow::Kind::entry || !row.isUnfolded) {
            return {1, rowHeight};
        }
        const auto content = list_->model_->content(index.row());
        const auto lines = kit::wrappedText(qString(content.text), textStyle(content),
                                            textBox(content, list_->viewport()->width()).width());
        return {1, rowHeight + lineHeight * std::max(static_cast<int>(lines.size()) - 1, 0)};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const auto content = list_->model_->content(index.row());
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(option.rect.topLeft());
        const QSize size(list_->viewport()->width(), option.rect.height());
        if (content.kind == ActivityRow::Kind::day) {
            painter->setPen(kit::color(ColorRole::ink2));
            kit::drawText(*painter, QRectF(padding, 3, size.width(), rowHeight - 3), Qt::AlignLeft,
                          qString(content.text), kit::style::smallStrong);
        } else {
            paintGround(*painter, size, option, index);
            paintColumns(*painter, content);
            paintText(*painter, content, size.width());
        }
        painter->restore();
    }

private:
    void paintGround(QPainter& painter, QSize size, const QStyleOptionViewItem& option,
                     const QModelIndex& index) const {
        const QRectF box(groundInset, 0, size.width() - 2 * groundInset, size.height());
        const bool isSelected = (option.state & QStyle::State_Selected) != 0;
        if (isSelected || (option.state & QStyle::State_MouseOver) != 0) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(kit::color(isSelected ? ColorRole::select : ColorRole::hover));
            painter.drawRoundedRect(box, kit::radius::control, kit::radius::control);
        }
        if (list_->showsFocus_ && list_->hasFocus() && index == list_->currentIndex()) {
            const double half = kit::focusWidth / 2.0;
            painter.setPen(QPen(kit::color(ColorRole::focus), kit::focusWidth));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(box.adjusted(half, half, -half, -half),
                                    kit::radius::control - half, kit::radius::control - half);
        }
    }

    static void paintColumns(QPainter& painter, const ActivityRowContent& content) {
        painter.setPen(kit::color(ColorRole::ink2));
        kit::drawText(painter, QRectF(padding, 0, timeWidth, rowHeight), Qt::AlignLeft,
                      qString(content.time), kit::style::text);
        const QPointF mark(padding + timeWidth + 5, (rowHeight - markSide) / 2.0);
        const QRectF markBox(mark, QSizeF(markSide, markSide));
        if (content.isFold) {
            drawChevron(painter, markBox.center(), content.isUnfolded);
        } else if (content.level == Level::notice) {
            kit::drawIcon(painter, markBox, "exclamationmark.triangle.fill",
                          kit::color(ColorRole::attention));
        } else if (content.level == Level::error) {
            kit::drawIcon(painter, markBox, "xmark.circle", kit::color(ColorRole::ink));
        }
        QRectF subject(subjectLeft, 0, subjectWidth - logoGap, rowHeight);
        if (content.agent) {
            kit::drawLogo(painter, QPointF(subjectLeft, (rowHeight - logoSide) / 2.0), logoSide,
                          providerLogo(*content.agent));
            subject.setLeft(subjectLeft + logoSide + logoGap);
            painter.setPen(kit::color(ColorRole::ink));
        } else {
            painter.setPen(kit::color(ColorRole::ink2));
        }
        const auto& style = content.agent ? kit::style::row : kit::style::text;
        kit::drawText(painter, subject, Qt::AlignLeft,
                      kit::elidedText(qString(content.subject), style, subject.width()), style);
    }

    static void paintText(QPainter& painter, const ActivityRowContent& content, int width) {
        const QRect box = textBox(content, width);
        const QString text = qString(content.text);
        const kit::TextStyle& style = textStyle(content);
        const bool isWhole = content.isUnfolded && !content.isFold;
        painter.setPen(kit::color(ColorRole::ink));
        if (isWhole) {
            QRectF line(box.left(), (rowHeight - lineHeight) / 2.0, box.width(), lineHeight);
            for (const QString& words : kit::wrappedText(text, style, box.width())) {
                kit::drawText(painter, line, Qt::AlignLeft, words, style);
                line.translate(0, lineHeight);
            }
        } else {
            kit::drawText(painter, box, Qt::AlignLeft, kit::elidedText(text, style, box.width()),
                          style);
        }
        if (!content.isFold && isShortened(content, width)) {
            drawChevron(painter, QPointF(width - padding - chevronSide / 2.0, rowHeight / 2.0),
                        isWhole);
        }
    }

    ActivityList* list_;
};

ActivityList::ActivityList(ActivityListModel* model, QWidget* parent)
    : QListView(parent), model_(model), painter_(new Painter(this)),
      bar_(new kit::OverlayBar(this)) {
    setItemDelegate(painter_);
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollMode(ScrollPerPixel);
    setResizeMode(Adjust);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setMouseTracking(true);
    viewport()->setAutoFillBackground(false);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setAttribute(Qt::WA_Hover);
    verticalScrollBar()->setSingleStep(rowHeight);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { scrolled(); });
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this, [this] { stayAtEnd(); });
    setModel(model);
    // An unfolded row changes its height.
    connect(model, &QAbstractItemModel::dataChanged, this,
            [this] { scheduleDelayedItemsLayout(); });
}

void ActivityList::followAgain() {
    follows_ = true;
    executeDelayedItemsLayout();
    stayAtEnd();
    if (onFollowChange) {
        onFollowChange();
    }
}

void ActivityList::stayAtEnd() {
    if (follows_ && verticalScrollBar()->value() != verticalScrollBar()->maximum()) {
        isChanging_ = true;
        verticalScrollBar()->setValue(verticalScrollBar()->maximum());
        isChanging_ = false;
    }
}

void ActivityList::scrolled() {
    const bool isAtEnd = verticalScrollBar()->value() >= verticalScrollBar()->maximum();
    if (!isChanging_ && follows_ != isAtEnd) {
        follows_ = isAtEnd;
        if (onFollowChange) {
            onFollowChange();
        }
    }
}

std::vector<std::size_t> ActivityList::selectedRows() const {
    std::vector<std::size_t> rows;
    for (const QModelIndex& index : selectionModel()->selectedIndexes()) {
        rows.push_back(static_cast<std::size_t>(index.row()));
    }
    std::ranges::sort(rows);
    return rows;
}

void ActivityList::copy() const {
    std::vector<std::size_t> rows = selectedRows();
    if (rows.empty()) {
        rows.resize(model_->listing().rows().size());
        for (std::size_t index = 0; index < rows.size(); ++index) {
            rows[index] = index;
        }
    }
    QGuiApplication::clipboard()->setText(qString(model_->listing().linesText(rows)));
}

void ActivityList::toggle(int row) {
    const QModelIndex index = model_->index(row);
    if (!index.isValid() || (index.flags() & Qt::ItemIsEnabled) == 0) {
        return;
    }
    const ActivityRowContent content = model_->content(row);
    if (!content.isFold && !content.isUnfolded && !isShortened(content, viewport()->width())) {
        return;
    }
    // What is unfolded is to be read, not followed; the last row alone may push the others up.
    if (row + 1 < model_->rowCount()) {
        follows_ = false;
    }
    model_->listing().toggle(static_cast<std::size_t>(row));
    model_->showRows();
    executeDelayedItemsLayout();
    stayAtEnd();
    scrolled();
    if (onFollowChange) {
        onFollowChange();
    }
}

bool ActivityList::isOnMark(const QModelIndex& index, QPoint position) const {
    if (!index.isValid()) {
        return false;
    }
    const ActivityRowContent content = model_->content(index.row());
    return content.isFold ? position.x() >= padding + timeWidth && position.x() < subjectLeft
                          : position.x() > viewport()->width() - padding - chevronSide - chevronGap;
}

bool ActivityList::event(QEvent* event) {
    // The menu has these keys as well, for whatever can copy.
    if (event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->matches(QKeySequence::Copy) || key->matches(QKeySequence::SelectAll)) {
            event->accept();
            return true;
        }
    }
    return QListView::event(event);
}

void ActivityList::keyPressEvent(QKeyEvent* event) {
    showsFocus_ = true;
    viewport()->update();
    const QModelIndex current = currentIndex();
    const bool isUnfolded = current.isValid() && model_->row(current.row()).isUnfolded;
    if (event->matches(QKeySequence::Copy)) {
        copy();
        return;
    }
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        toggle(current.row());
        return;
    case Qt::Key_Right:
        if (!isUnfolded) {
            toggle(current.row());
        }
        return;
    case Qt::Key_Left:
        if (isUnfolded) {
            toggle(current.row());
        }
        return;
    case Qt::Key_Home:
    case Qt::Key_End:
        goToEnd(event);
        return;
    default:
        break;
    }
    const bool isMove = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down ||
                        event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown ||
                        event->matches(QKeySequence::SelectAll);
    if (isMove) {
        QListView::keyPressEvent(event);
    } else {
        event->ignore(); // no search for a row by its first letters: there is a field for that
    }
}

/// To the first or the last row that can be current: days cannot. The view goes all the way.
void ActivityList::goToEnd(QKeyEvent* event) {
    const bool isHome = event->key() == Qt::Key_Home;
    const int count = model_->rowCount();
    for (int step = 0; step < count; ++step) {
        const QModelIndex index = model_->index(isHome ? step : count - 1 - step);
        if ((index.flags() & Qt::ItemIsEnabled) != 0) {
            selectionModel()->setCurrentIndex(index, selectionCommand(index, event));
            break;
        }
    }
    verticalScrollBar()->setValue(isHome ? verticalScrollBar()->minimum()
                                         : verticalScrollBar()->maximum());
}

void ActivityList::mousePressEvent(QMouseEvent* event) {
    showsFocus_ = false;
    const QModelIndex index = indexAt(event->pos());
    if (event->button() == Qt::LeftButton && isOnMark(index, event->pos())) {
        setCurrentIndex(index);
        toggle(index.row());
        return;
    }
    QListView::mousePressEvent(event);
}

void ActivityList::mouseDoubleClickEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->pos());
    if (index.isValid()) {
        toggle(index.row());
    }
}

void ActivityList::focusInEvent(QFocusEvent* event) {
    const auto reason = event->reason();
    showsFocus_ = showsFocus_ || reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                  reason == Qt::ShortcutFocusReason;
    if (!currentIndex().isValid() && reason != Qt::MouseFocusReason && model_->rowCount() > 0) {
        selectionModel()->setCurrentIndex(model_->index(model_->rowCount() - 1),
                                          QItemSelectionModel::NoUpdate);
    }
    QListView::focusInEvent(event);
    viewport()->update();
}

void ActivityList::focusOutEvent(QFocusEvent* event) {
    QListView::focusOutEvent(event);
    viewport()->update();
}

void ActivityList::resizeEvent(QResizeEvent* event) {
    QListView::resizeEvent(event);
    bar_->place();
    stayAtEnd();
}

void ActivityList::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(viewport());
        painter.fillRect(event->rect(), kit::color(ColorRole::card));
    }
    QListView::paintEvent(event);
}

} // namespace vellmark
