#pragma once

#include "presentation/SupportReportContent.h"
#include "presentation/WrappedText.h"
#include "ui/kit/Interaction.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>

#include <functional>
#include <memory>
#include <optional>

namespace vellmark {

namespace kit {
class OverlayBar;
}

/// A report to read, of any length: type of one width, rows that go on deeper than their line
/// began, selection by pointer and keys. Only what is in sight is drawn, and breaking it into rows
/// takes a few milliseconds, so a text of ten megabytes holds nobody up.
///
/// What stands for something removed has a ground of its own; pointing at it marks all others of
/// its kind. Places are bytes of the text. Main thread.
class ReportTextView : public QAbstractScrollArea {
public:
    explicit ReportTextView(QWidget* parent = nullptr);
    ~ReportTextView() override;

    /// Another text keeps the row at the top.
    void setText(std::shared_ptr<const RedactedText> text);
    /// Brings the current match into sight when it is another one.
    void setMatches(std::shared_ptr<const ReportMatches> matches, std::size_t current);
    /// Marks the places of a kind, or none.
    void setMarked(std::optional<RemovedKind> kind);
    /// Selects the next place of a kind, behind the last one the first.
    void goToNext(RemovedKind kind);
    /// What the menu of the text offers.
    void setMenuWords(const QString& copy, const QString& selectAll);

    /// The pointer has come to a place of a kind, or left it.
    std::function<void(std::optional<RemovedKind>)> onPoint;

    const WrappedText& rows() const { return rows_; }
    /// Goes up whenever the rows may be others.
    unsigned revision() const { return revision_; }
    std::size_t caret() const { return caret_; }
    TextRange selection() const;
    QString selectedText() const;
    void select(std::size_t anchor, std::size_t caret);
    void bringIntoSight(std::size_t place);
    /// Where a place is drawn, in the viewport.
    QRectF rectOf(std::size_t place) const;
    std::size_t placeAt(QPointF position) const;

    /// What is selected, without a selection everything.
    void copy();
    void selectAll();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    class Painting;

    std::string_view text() const { return rows_.text(); }
    std::size_t columns() const;
    void wrap();
    std::size_t rowAt(double y) const;
    double top(std::size_t row) const;
    void moveCaret(std::size_t place, bool extends);
    void moveByRows(std::ptrdiff_t count, bool extends);
    bool moveByKey(const QKeyEvent& event);
    void pointAt(QPointF position);
    void tellOfCaret();

    std::shared_ptr<const RedactedText> shown_;
    WrappedText rows_;
    unsigned revision_ = 0;
    std::shared_ptr<const ReportMatches> matches_;
    std::size_t currentMatch_ = 0;
    std::optional<RemovedKind> marked_;
    std::optional<RemovedKind> pointedAt_;
    std::size_t anchor_ = 0;
    std::size_t caret_ = 0;
    /// Where the caret wants to be while it goes up and down.
    std::optional<double> wantedColumn_;
    bool isSelecting_ = false;
    QBasicTimer dragging_;
    QString copyWords_;
    QString selectAllWords_;
    kit::OverlayBar* overlay_;
    kit::Interaction interaction_;
};

} // namespace vellmark
