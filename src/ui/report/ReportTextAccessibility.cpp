#include "ui/report/ReportTextAccessibility.h"

#include "ui/Conversions.h"
#include "ui/report/ReportTextView.h"

#include <QAccessibleWidget>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <vector>

namespace vellmark {

namespace {

qsizetype unitsIn(std::string_view text) {
    return qString(text).size();
}

/// The text in the UTF-16 units in which it is asked for, a row at a time: it may be very long.
class ReportTextInterface : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit ReportTextInterface(ReportTextView* view)
        : QAccessibleWidget(view, QAccessible::EditableText) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = true;
        state.multiLine = true;
        state.selectableText = true;
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType kind) override {
        return kind == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface*>(this)
                                                  : QAccessibleWidget::interface_cast(kind);
    }

    void selection(int index, int* begin, int* end) const override {
        const TextRange range = view().selection();
        *begin = *end = 0;
        if (index == 0 && range.begin < range.end) {
            *begin = unitOf(range.begin);
            *end = unitOf(range.end);
        }
    }
    int selectionCount() const override {
        const TextRange range = view().selection();
        return range.begin < range.end ? 1 : 0;
    }
    void addSelection(int begin, int end) override { setSelection(0, begin, end); }
    void removeSelection(int /*index*/) override { setCursorPosition(cursorPosition()); }
    void setSelection(int /*index*/, int begin, int end) override {
        view().select(placeOf(begin), placeOf(end));
    }
    int cursorPosition() const override { return unitOf(view().caret()); }
    void setCursorPosition(int unit) override { view().select(placeOf(unit), placeOf(unit)); }

    int characterCount() const override { return unitOf(rows().text().size()); }

    QString text(int begin, int end) const override {
        const std::size_t first = placeOf(begin);
        return qString(rows().text().substr(first, placeOf(std::max(begin, end)) - first));
    }
    QString text(QAccessible::Text kind) const override { return QAccessibleWidget::text(kind); }

    QString textAtOffset(int unit, QAccessible::TextBoundaryType kind, int* begin,
                         int* end) const override {
        const std::size_t row = rowOf(unit);
        const QString line = lineOf(row);
        const int start = starts()[row];
        const auto [first, last] = boundsIn(line, unit - start, kind);
        *begin = start + first;
        *end = start + last;
        return line.mid(first, last - first);
    }
    QString textBeforeOffset(int unit, QAccessible::TextBoundaryType kind, int* begin,
                             int* end) const override {
        const std::size_t row = rowOf(unit);
        textAtOffset(unit, kind, begin, end);
        if (*begin > starts()[row]) {
            return textAtOffset(*begin - 1, kind, begin, end);
        }
        if (row == 0) {
            return none(begin, end);
        }
        const auto length = static_cast<int>(lineOf(row - 1).size());
        return textAtOffset(starts()[row - 1] + std::max(length - 1, 0), kind, begin, end);
    }
    QString textAfterOffset(int unit, QAccessible::TextBoundaryType kind, int* begin,
                            int* end) const override {
        const std::size_t row = rowOf(unit);
        textAtOffset(unit, kind, begin, end);
        if (*end < starts()[row] + lineOf(row).size()) {
            return textAtOffset(*end, kind, begin, end);
        }
        return row + 1 < rows().rowCount() ? textAtOffset(starts()[row + 1], kind, begin, end)
                                           : none(begin, end);
    }

    QRect characterRect(int unit) const override {
        const QRect rect = view().rectOf(placeOf(unit)).toAlignedRect();
        return {view().viewport()->mapToGlobal(rect.topLeft()), rect.size()};
    }
    int offsetAtPoint(const QPoint& point) const override {
        return unitOf(view().placeAt(view().viewport()->mapFromGlobal(QPointF(point))));
    }
    void scrollToSubstring(int begin, int /*end*/) override {
        view().bringIntoSight(placeOf(begin));
    }
    QString attributes(int /*unit*/, int* begin, int* end) const override {
        *begin = 0;
        *end = characterCount();
        return {};
    }

private:
    ReportTextView& view() const { return static_cast<ReportTextView&>(*widget()); }
    const WrappedText& rows() const { return view().rows(); }

    static QString none(int* begin, int* end) {
        *begin = *end = -1;
        return {};
    }

    static std::pair<int, int> boundsIn(const QString& line, int unit,
                                        QAccessible::TextBoundaryType kind) {
        const auto length = static_cast<int>(line.size());
        const bool isPart = kind == QAccessible::CharBoundary || kind == QAccessible::WordBoundary;
        if (isPart && unit >= length) {
            return {length, length};
        }
        if (!isPart) {
            return {0, length};
        }
        QTextBoundaryFinder finder(kind == QAccessible::CharBoundary ? QTextBoundaryFinder::Grapheme
                                                                     : QTextBoundaryFinder::Word,
                                   line);
        finder.setPosition(std::clamp(unit, 0, length));
        const auto last = static_cast<int>(finder.toNextBoundary());
        const auto first = static_cast<int>(finder.toPreviousBoundary());
        return {std::max(first, 0), last < 0 ? length : last};
    }

    /// The unit at which each row begins; counted once for a text and its rows.
    const std::vector<int>& starts() const {
        if (starts_.empty() || revision_ != view().revision()) {
            revision_ = view().revision();
            starts_.assign(1, 0);
            for (std::size_t row = 1; row < rows().rowCount(); ++row) {
                const std::size_t begin = rows().row(row - 1).begin;
                starts_.push_back(starts_.back() + static_cast<int>(unitsIn(rows().text().substr(
                                                       begin, rows().row(row).begin - begin))));
            }
        }
        return starts_;
    }

    int unitOf(std::size_t place) const {
        const std::size_t row = rows().rowOf(place);
        const std::size_t begin = rows().row(row).begin;
        return starts()[row] +
               static_cast<int>(unitsIn(rows().text().substr(begin, place - begin)));
    }

    std::size_t rowOf(int unit) const {
        const auto next = std::ranges::upper_bound(starts(), std::max(unit, 0));
        return static_cast<std::size_t>(next - starts().begin()) - 1;
    }

    QString lineOf(std::size_t index) const {
        const WrappedText::Row row = rows().row(index);
        return qString(rows().text().substr(row.begin, row.end - row.begin));
    }

    std::size_t placeOf(int unit) const {
        const std::size_t row = rowOf(unit);
        std::size_t place = rows().row(row).begin;
        for (int at = starts()[row]; at < unit && place < rows().text().size();) {
            const std::size_t after = rows().after(place);
            at += static_cast<int>(unitsIn(rows().text().substr(place, after - place)));
            place = after;
        }
        return place;
    }

    mutable unsigned revision_ = 0;
    mutable std::vector<int> starts_;
};

QAccessibleInterface* reportTextInterface(const QString& /*className*/, QObject* object) {
    auto* view = dynamic_cast<ReportTextView*>(object);
    return view != nullptr ? new ReportTextInterface(view) : nullptr;
}

} // namespace

void tellOfReportTexts() {
    QAccessible::installFactory(reportTextInterface);
}

void tellOfReportCaret(ReportTextView& view) {
    QAccessibleInterface* told = QAccessible::queryAccessibleInterface(&view);
    if (told == nullptr || told->textInterface() == nullptr) {
        return;
    }
    const TextRange range = view.selection();
    QAccessibleTextInterface& text = *told->textInterface();
    if (range.begin < range.end) {
        int begin = 0;
        int end = 0;
        text.selection(0, &begin, &end);
        QAccessibleTextSelectionEvent event(&view, begin, end);
        QAccessible::updateAccessibility(&event);
    } else {
        QAccessibleTextCursorEvent event(&view, text.cursorPosition());
        QAccessible::updateAccessibility(&event);
    }
}

} // namespace vellmark
