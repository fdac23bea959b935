#include "ui/report/ReportTextView.h"

#include "text/Characters.h"
#include "ui/Conversions.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/OverlayBar.h"
#include "ui/kit/Theme.h"
#include "ui/report/ReportTextAccessibility.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vellmark {

namespace {

using kit::ColorRole;

constexpr auto& type = kit::style::mono;
constexpr int rowHeight = type.lineHeight;
constexpr int sidePadding = 14;
constexpr int verticalPadding = 12;
/// Around what is marked.
constexpr double markRadius = 3;
/// Kept free above and below a place that is brought into sight.
constexpr int sightRows = 2;
constexpr int dragMilliseconds = 40;
constexpr double caretWidth = 1;

/// One column; measured over many, since a single one is rounded.
double columnWidth() {
    constexpr int many = 100;
    return kit::textWidth(QString(many, u'0'), type) / many;
}

/// The first place that ends behind `begin`.
template<typename Place>
auto firstFrom(const std::vector<Place>& places, std::size_t begin) {
    return std::ranges::upper_bound(places, begin, {}, &Place::end);
}

} // namespace

/// Draws the rows in sight.
class ReportTextView::Painting {
public:
    Painting(const ReportTextView& view, QPainter& painter) : view_(view), painter_(painter) {}

    void drawRow(std::size_t index) {
        row_ = view_.rows_.row(index);
        top_ = view_.top(index);
        if (view_.shown_) {
            drawRemoved();
        }
        drawMatches();
        const TextRange selection = view_.selection();
        if (selection.begin < selection.end) {
            drawSelection(selection);
        }
        drawWords(row_.begin, row_.end, ColorRole::ink);
        drawCurrentMatch();
        drawCaret(index);
    }

private:
    /// The part of this row that a range takes; null when it takes none.
    QRectF rectOf(std::size_t begin, std::size_t end) const {
        begin = std::max(begin, row_.begin);
        end = std::min(end, row_.end);
        if (begin >= end) {
            return {};
        }
        const double left = view_.rectOf(begin).left();
        const auto wide = static_cast<double>(columnsIn(begin, end)) * columnWidth();
        return {left, top_ + 1, wide, rowHeight - 2};
    }

    std::size_t columnsIn(std::size_t begin, std::size_t end) const {
        std::size_t columns = 0;
        while (begin < end) {
            columns += WrappedText::columnsOf(nextCharacter(view_.text(), begin));
        }
        return columns;
    }

    void fill(const QRectF& rect, ColorRole role) {
        painter_.setPen(Qt::NoPen);
        painter_.setBrush(kit::color(role));
        painter_.drawRoundedRect(rect, markRadius, markRadius);
    }

    void drawRemoved() {
        const auto& places = view_.shown_->places;
        for (auto place = firstFrom(places, row_.begin);
             place != places.end() && place->begin < row_.end; ++place) {
            const QRectF rect = rectOf(place->begin, place->end).adjusted(-1, 0, 1, 0);
            if (place->kind == view_.marked_) {
                fill(rect, ColorRole::select);
                painter_.setBrush(Qt::NoBrush);
                painter_.setPen(QPen(kit::color(ColorRole::ink2), 1));
                painter_.drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), markRadius,
                                         markRadius);
            } else {
                fill(rect, ColorRole::fill);
            }
        }
    }

    void drawMatches() {
        if (!view_.matches_) {
            return;
        }
        const auto& places = view_.matches_->places;
        for (auto place = firstFrom(places, row_.begin);
             place != places.end() && place->begin < row_.end; ++place) {
            fill(rectOf(place->begin, place->end), ColorRole::fillPressed);
        }
    }

    void drawSelection(const TextRange& selection) {
        QRectF rect = rectOf(selection.begin, selection.end);
        // The end of a line is selected, too.
        const bool takesEnd = selection.begin <= row_.end && selection.end > row_.end;
        if (rect.isNull() && takesEnd) {
            rect = QRectF(view_.rectOf(row_.end).left(), top_ + 1, 0, rowHeight - 2);
        }
        if (takesEnd) {
            rect.setWidth(rect.width() + columnWidth() / 2);
        }
        if (!rect.isEmpty()) {
            painter_.fillRect(rect.adjusted(0, -1, 0, 1), kit::color(ColorRole::select));
        }
    }

    void drawCurrentMatch() {
        if (!view_.matches_ || view_.currentMatch_ >= view_.matches_->places.size()) {
            return;
        }
        const TextRange match = view_.matches_->places[view_.currentMatch_];
        const QRectF rect = rectOf(match.begin, match.end);
        if (!rect.isNull()) {
            fill(rect, ColorRole::primary);
            drawWords(std::max(match.begin, row_.begin), std::min(match.end, row_.end),
                      ColorRole::onPrimary);
        }
    }

    void drawWords(std::size_t begin, std::size_t end, ColorRole role) {
        painter_.setPen(kit::color(role));
        double left = begin < end ? view_.rectOf(begin).left() : 0;
        const double column = columnWidth();
        // What is no ASCII may come from another font: each such character at its own column.
        for (std::size_t at = begin; at < end;) {
            const std::size_t next = pieceEnd(at, end);
            const std::string_view piece = view_.text().substr(at, next - at);
            if (piece.find_first_not_of(" \t") != std::string_view::npos) {
                kit::drawText(painter_, QRectF(left, top_, 0, rowHeight), Qt::AlignLeft,
                              qString(piece), type);
            }
            left += static_cast<double>(columnsIn(at, next)) * column;
            at = next;
        }
    }

    /// As many characters of ASCII as there are, or one other with its marks.
    std::size_t pieceEnd(std::size_t at, std::size_t end) const {
        const std::string_view text = view_.text();
        if (static_cast<signed char>(text[at]) >= 0) {
            const auto rest = text.substr(at, end - at);
            const auto other = std::ranges::find_if(
                rest, [](char byte) { return static_cast<signed char>(byte) < 0; });
            return at + static_cast<std::size_t>(other - rest.begin());
        }
        std::size_t next = at;
        nextCharacter(text, next);
        for (std::size_t mark = next; mark < end; next = mark) {
            if (WrappedText::columnsOf(nextCharacter(text, mark)) > 0) {
                break;
            }
        }
        return std::min(next, end);
    }

    void drawCaret(std::size_t index) {
        if (view_.hasFocus() && view_.rows_.rowOf(view_.caret_) == index) {
            const double left = std::round(view_.rectOf(view_.caret_).left());
            painter_.fillRect(QRectF(left, top_ + 1, caretWidth, rowHeight - 2),
                              kit::color(ColorRole::ink));
        }
    }

    const ReportTextView& view_;
    QPainter& painter_;
    WrappedText::Row row_;
    double top_ = 0;
};

ReportTextView::ReportTextView(QWidget* parent)
    : QAbstractScrollArea(parent), overlay_(new kit::OverlayBar(this)),
      interaction_(this, kit::FocusShape{kit::radius::notice, 0}) {
    tellOfReportTexts();
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setAutoFillBackground(false);
    viewport()->setCursor(Qt::IBeamCursor);
    viewport()->setMouseTracking(true);
    verticalScrollBar()->setSingleStep(rowHeight);
    wrap();
}

ReportTextView::~ReportTextView() = default;

void ReportTextView::setText(std::shared_ptr<const RedactedText> text) {
    if (text == shown_) {
        return;
    }
    shown_ = std::move(text);
    rows_ = WrappedText(shown_ ? std::string_view(shown_->text) : std::string_view());
    anchor_ = caret_ = 0;
    wantedColumn_.reset();
    matches_.reset();
    wrap();
}

void ReportTextView::setMatches(std::shared_ptr<const ReportMatches> matches, std::size_t current) {
    if (matches == matches_ && current == currentMatch_) {
        return;
    }
    matches_ = std::move(matches);
    currentMatch_ = current;
    if (matches_ && currentMatch_ < matches_->places.size()) {
        bringIntoSight(matches_->places[currentMatch_].begin);
    }
    viewport()->update();
}

void ReportTextView::setMarked(std::optional<RemovedKind> kind) {
    if (marked_ != kind) {
        marked_ = kind;
        viewport()->update();
    }
}

void ReportTextView::goToNext(RemovedKind kind) {
    if (!shown_) {
        return;
    }
    const auto& places = shown_->places;
    const auto isWanted = [kind](const RemovedPlace& place) { return place.kind == kind; };
    const std::size_t from = std::max(anchor_, caret_);
    auto next = std::find_if(std::ranges::lower_bound(places, from, {}, &RemovedPlace::begin),
                             places.end(), isWanted);
    if (next == places.end()) {
        next = std::ranges::find_if(places, isWanted);
    }
    if (next != places.end()) {
        select(next->begin, next->end);
    }
}

void ReportTextView::setMenuWords(const QString& copy, const QString& selectAll) {
    copyWords_ = copy;
    selectAllWords_ = selectAll;
}

// Places

std::size_t ReportTextView::columns() const {
    const double room = viewport()->width() - 2 * sidePadding;
    return static_cast<std::size_t>(std::max(room / columnWidth(), 1.0));
}

void ReportTextView::wrap() {
    // What stands at the top stays there.
    const double position = verticalScrollBar()->value();
    const std::size_t first = rows_.rowCount() == 0 ? 0 : rows_.row(rowAt(verticalPadding)).begin;
    rows_.wrap(columns());
    ++revision_;
    const auto height = static_cast<int>(rows_.rowCount()) * rowHeight + 2 * verticalPadding;
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setRange(0, std::max(height - viewport()->height(), 0));
    if (first > 0) {
        const auto kept = static_cast<int>(rows_.rowOf(first)) * rowHeight;
        verticalScrollBar()->setValue(kept + static_cast<int>(position) % rowHeight);
    }
    viewport()->update();
}

std::size_t ReportTextView::rowAt(double y) const {
    const double row = (y + verticalScrollBar()->value() - verticalPadding) / rowHeight;
    const auto last = static_cast<double>(rows_.rowCount() - 1);
    return static_cast<std::size_t>(std::clamp(row, 0.0, last));
}

double ReportTextView::top(std::size_t row) const {
    return static_cast<double>(row) * rowHeight + verticalPadding - verticalScrollBar()->value();
}

QRectF ReportTextView::rectOf(std::size_t place) const {
    const double column = columnWidth();
    const auto left = static_cast<double>(rows_.columnOf(place)) * column + sidePadding;
    return {left, top(rows_.rowOf(place)), column, rowHeight};
}

std::size_t ReportTextView::placeAt(QPointF position) const {
    return rows_.placeAt(rowAt(position.y()), (position.x() - sidePadding) / columnWidth());
}

void ReportTextView::bringIntoSight(std::size_t place) {
    const auto above = static_cast<int>(rows_.rowOf(place)) * rowHeight;
    QScrollBar* bar = verticalScrollBar();
    const int room = std::min(sightRows * rowHeight, viewport()->height() / 3);
    const int most = above - room;
    const int least = above + rowHeight + 2 * verticalPadding + room - viewport()->height();
    if (bar->value() > most) {
        bar->setValue(most);
    } else if (bar->value() < least) {
        bar->setValue(least);
    }
}

// Selection

TextRange ReportTextView::selection() const {
    return {std::min(anchor_, caret_), std::max(anchor_, caret_)};
}

QString ReportTextView::selectedText() const {
    const TextRange range = selection();
    return qString(text().substr(range.begin, range.end - range.begin));
}

void ReportTextView::select(std::size_t anchor, std::size_t caret) {
    anchor_ = std::min(anchor, text().size());
    caret_ = std::min(caret, text().size());
    wantedColumn_.reset();
    bringIntoSight(caret_);
    viewport()->update();
    tellOfCaret();
}

void ReportTextView::selectAll() {
    anchor_ = 0;
    caret_ = text().size();
    viewport()->update();
    tellOfCaret();
}

void ReportTextView::copy() {
    const bool isAll = anchor_ == caret_;
    QGuiApplication::clipboard()->setText(isAll ? qString(text()) : selectedText());
}

void ReportTextView::tellOfCaret() {
    if (QAccessible::isActive()) {
        tellOfReportCaret(*this);
    }
}

void ReportTextView::moveCaret(std::size_t place, bool extends) {
    select(extends ? anchor_ : place, place);
}

void ReportTextView::moveByRows(std::ptrdiff_t count, bool extends) {
    const double column = wantedColumn_.value_or(static_cast<double>(rows_.columnOf(caret_)));
    const auto last = static_cast<std::ptrdiff_t>(rows_.rowCount()) - 1;
    const auto row = std::clamp<std::ptrdiff_t>(
        static_cast<std::ptrdiff_t>(rows_.rowOf(caret_)) + count, 0, last);
    moveCaret(rows_.placeAt(static_cast<std::size_t>(row), column), extends);
    wantedColumn_ = column;
}

bool ReportTextView::moveByKey(const QKeyEvent& event) {
    const bool extends = event.modifiers().testFlag(Qt::ShiftModifier);
    const bool isFar = event.modifiers().testFlag(Qt::ControlModifier);
    const std::ptrdiff_t page = std::max(viewport()->height() / rowHeight - 1, 1);
    const auto row = [this] { return rows_.rowOf(caret_); };
    switch (event.key()) {
    case Qt::Key_Up:
        moveByRows(-1, extends);
        return true;
    case Qt::Key_Down:
        moveByRows(1, extends);
        return true;
    case Qt::Key_PageUp:
        moveByRows(-page, extends);
        return true;
    case Qt::Key_PageDown:
        moveByRows(page, extends);
        return true;
    case Qt::Key_Left: {
        const std::size_t before = rows_.before(caret_);
        moveCaret(isFar ? rows_.wordBegin(before) : before, extends);
        return true;
    }
    case Qt::Key_Right:
        moveCaret(isFar ? rows_.wordEnd(caret_) : rows_.after(caret_), extends);
        return true;
    case Qt::Key_Home:
        moveCaret(isFar ? 0 : rows_.row(row()).begin, extends);
        return true;
    case Qt::Key_End:
        moveCaret(isFar ? text().size() : rows_.placeAt(row(), static_cast<double>(columns())),
                  extends);
        return true;
    default:
        return false;
    }
}

void ReportTextView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        copy();
    } else if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
    } else if (!moveByKey(*event)) {
        event->ignore(); // the window's
    }
}

// Pointer

void ReportTextView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    const std::size_t place = placeAt(event->position());
    anchor_ = event->modifiers().testFlag(Qt::ShiftModifier) ? anchor_ : place;
    caret_ = place;
    isSelecting_ = true;
    wantedColumn_.reset();
    viewport()->update();
    tellOfCaret();
}

void ReportTextView::mouseMoveEvent(QMouseEvent* event) {
    if (!isSelecting_) {
        pointAt(event->position());
        return;
    }
    caret_ = placeAt(event->position());
    viewport()->update();
    const bool isOutside =
        event->position().y() < 0 || event->position().y() > viewport()->height();
    if (isOutside && !dragging_.isActive()) {
        dragging_.start(dragMilliseconds, this);
    } else if (!isOutside) {
        dragging_.stop();
    }
}

/// Held beside the text while selecting, the pointer moves it.
void ReportTextView::timerEvent(QTimerEvent* event) {
    if (event->timerId() != dragging_.timerId()) {
        QAbstractScrollArea::timerEvent(event);
        return;
    }
    const QPointF position = viewport()->mapFromGlobal(QCursor::pos());
    const double beyond =
        position.y() < 0 ? position.y() : std::max(position.y() - viewport()->height(), 0.0);
    QScrollBar* bar = verticalScrollBar();
    bar->setValue(bar->value() + static_cast<int>(beyond));
    caret_ = placeAt(position);
    viewport()->update();
}

void ReportTextView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    isSelecting_ = false;
    dragging_.stop();
    tellOfCaret();
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (anchor_ != caret_ && clipboard->supportsSelection()) {
        clipboard->setText(selectedText(), QClipboard::Selection);
    }
}

void ReportTextView::mouseDoubleClickEvent(QMouseEvent* event) {
    const std::size_t place = placeAt(event->position());
    select(rows_.wordBegin(place), rows_.wordEnd(place));
}

void ReportTextView::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu(this);
    const QAction* copies = menu.addAction(copyWords_);
    const QAction* selects = menu.addAction(selectAllWords_);
    const QAction* chosen = menu.exec(event->globalPos());
    if (chosen == copies) {
        copy();
    } else if (chosen == selects) {
        selectAll();
    }
}

bool ReportTextView::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::Leave) {
        pointAt({-1, -1});
    }
    return QAbstractScrollArea::viewportEvent(event);
}

void ReportTextView::pointAt(QPointF position) {
    std::optional<RemovedKind> kind;
    const bool isInside = QRectF(viewport()->rect()).contains(position);
    if (shown_ && isInside) {
        const auto& places = shown_->places;
        const std::size_t row = rowAt(position.y());
        const WrappedText::Row shown = rows_.row(row);
        for (auto place = firstFrom(places, shown.begin);
             place != places.end() && place->begin < shown.end; ++place) {
            const double left = rectOf(std::max(place->begin, shown.begin)).left();
            const double right =
                left + kit::textWidth(
                           qString(text().substr(place->begin, place->end - place->begin)), type);
            if (position.x() >= left && position.x() <= right) {
                kind = place->kind;
            }
        }
    }
    if (kind != pointedAt_) {
        pointedAt_ = kind;
        if (onPoint) {
            onPoint(kind);
        }
    }
}

// Drawing

void ReportTextView::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF edge = QRectF(viewport()->rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setBrush(kit::color(ColorRole::card));
    painter.setPen(QPen(kit::color(ColorRole::lineStrong), 1));
    painter.drawRoundedRect(edge, kit::radius::notice - 0.5, kit::radius::notice - 0.5);
    QPainterPath inside;
    inside.addRoundedRect(edge.adjusted(0.5, 0.5, -0.5, -0.5), kit::radius::notice - 1,
                          kit::radius::notice - 1);
    painter.setClipPath(inside);
    Painting painting(*this, painter);
    const std::size_t last = rowAt(event->rect().bottom());
    for (std::size_t row = rowAt(event->rect().top()); row <= last; ++row) {
        painting.drawRow(row);
    }
}

void ReportTextView::resizeEvent(QResizeEvent* /*event*/) {
    overlay_->place();
    wrap();
}

void ReportTextView::scrollContentsBy(int /*dx*/, int /*dy*/) {
    viewport()->update();
}

void ReportTextView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

void ReportTextView::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

} // namespace vellmark
