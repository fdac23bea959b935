#include "ui/window/HistoryCards.h"

#include "ui/ChartView.h"
#include "ui/Conversions.h"
#include "ui/ProviderLogo.h"
#include "ui/UpdateInPlace.h"
#include "ui/kit/CardGround.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/HeatMap.h"
#include "ui/kit/Label.h"
#include "ui/kit/LegendKey.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {

constexpr int padding = 16;
constexpr int topPadding = 12;
constexpr int legendHeight = 22;
constexpr int legendInset = 8; // the keys' own padding
constexpr int legendGap = 6;
constexpr int resetStroke = 15; // with the room around it, before its word
constexpr int chartGap = 6;
constexpr int bottomPadding = 8;
constexpr int titleGap = 12;
constexpr double pictureScale = 2;

constexpr int stepSide = 10;
constexpr int stepGap = 3;

} // namespace

// --- the chart

HistoryChartCard::HistoryChartCard(QWidget* parent)
    : QWidget(parent), chart_(new ChartView(ChartView::Size::large, this)),
      note_(new kit::Label(kit::style::text, kit::ColorRole::ink2, this)) {
    note_->setAlignment(Qt::AlignCenter);
    note_->setMostLines(2);
}

void HistoryChartCard::setContent(const HistoryPageContent& content) {
    items_ = content.legend;
    resetWord_ = qString(content.resetWord);
    while (keys_.size() > items_.size()) {
        delete keys_.back();
        keys_.pop_back();
    }
    while (keys_.size() < items_.size()) {
        auto* key = new kit::LegendKey(this);
        const std::size_t index = keys_.size();
        connect(key, &QAbstractButton::clicked, this, [this, index] {
            if (onToggle && index < items_.size()) {
                onToggle(items_[index].windowID);
            }
        });
        keys_.push_back(key);
        key->show();
    }
    const kit::LogoLook& logo = providerLogo(content.chart.agent);
    for (std::size_t index = 0; index < keys_.size(); ++index) {
        const HistoryLegendItem& item = items_[index];
        keys_[index]->setLook({logo.accentLight, logo.accentDark, chartStroke(item.role),
                               qString(item.name), qString(item.value), item.isShown});
        keys_[index]->setAccessibleName(qString(item.accessibilityText));
        keys_[index]->setEnabled(item.canChange);
    }
    chart_->setContent(content.chart);
    chart_->setVisible(content.chartNote.empty());
    note_->setWords(qString(content.chartNote));
    note_->setVisible(!content.chartNote.empty());
    arrange();
    update();
}

std::vector<QWidget*> HistoryChartCard::controls() const {
    std::vector<QWidget*> result(keys_.begin(), keys_.end());
    result.push_back(chart_);
    return result;
}

std::string HistoryChartCard::pictureData() {
    QImage image(size() * pictureScale, QImage::Format_RGB32);
    image.setDevicePixelRatio(pictureScale);
    image.fill(kit::color(kit::ColorRole::window));
    render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
}

void HistoryChartCard::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void HistoryChartCard::arrange() {
    const int end = width() - padding - legendGap - resetStroke -
                    static_cast<int>(std::ceil(kit::textWidth(resetWord_, kit::style::small)));
    int left = padding - legendInset;
    int top = topPadding - 2;
    for (std::size_t index = 0; index < keys_.size(); ++index) {
        const QSize wanted = keys_[index]->sizeHint();
        if (left > padding && left + wanted.width() > end) {
            left = padding - legendInset;
            top += legendHeight;
        }
        keys_[index]->setGeometry(left, top, wanted.width(), wanted.height());
        left += wanted.width() + legendGap;
    }
    top += legendHeight + chartGap;
    const QRect rest(padding - 2, top, width() - 2 * padding + 2,
                     std::max(height() - top - bottomPadding, 0));
    chart_->setGeometry(rest);
    note_->setGeometry(rest);
}

void HistoryChartCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    kit::drawCardGround(painter, rect());
    if (keys_.empty()) {
        return;
    }
    const double words = kit::textWidth(resetWord_, kit::style::small);
    const QRectF box(width() - padding - words, topPadding - 2, words, legendHeight);
    painter.setPen(kit::color(kit::ColorRole::ink2));
    kit::drawText(painter, box, Qt::AlignLeft, resetWord_, kit::style::small);
    QPen pen(kit::color(kit::ColorRole::ink3), 1, Qt::CustomDashLine, Qt::RoundCap);
    pen.setDashPattern({0.5, 3});
    painter.setPen(pen);
    const double x = box.left() - resetStroke / 2.0;
    painter.drawLine(QPointF(x, box.top() + 5), QPointF(x, box.bottom() - 5));
}

// --- the heat map

HeatMapCard::HeatMapCard(QWidget* parent)
    : QWidget(parent), title_(new kit::Label(kit::style::strong, kit::ColorRole::ink, this)),
      map_(new kit::HeatMap(this)) {
    map_->wordsAt = [this](int row, int column) {
        return qString(
            content_.words[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]);
    };
}

void HeatMapCard::setContent(const HeatMapContent& content) {
    content_ = content;
    title_->setWords(qString(content.title));
    const kit::LogoLook& logo = providerLogo(content.agent);
    kit::HeatMapLook look{logo.accentLight, logo.accentDark, {}, {}, {}};
    for (const std::string& name : content.dayNames) {
        look.rowNames << qString(name);
    }
    for (const auto& [hour, name] : content.hourNames) {
        look.columnNames[hour] = qString(name);
    }
    for (const auto& row : content.level) {
        look.levels.emplace_back(row.begin(), row.end());
    }
    map_->setLook(look);
    map_->setAccessibleName(qString(content.accessibilityText));
    update();
}

int HeatMapCard::heightForWidth(int width) const {
    return topPadding + kit::style::strong.lineHeight + titleGap +
           map_->heightForWidth(width - 2 * padding) + bottomPadding;
}

void HeatMapCard::resizeEvent(QResizeEvent* /*event*/) {
    const double legend =
        kit::textWidth(qString(content_.less + content_.more), kit::style::small) +
        HeatMapContent::levels * (stepSide + stepGap) + 3 * stepGap;
    title_->setGeometry(padding, topPadding,
                        std::max(width() - 2 * padding - static_cast<int>(legend) - 12, 0),
                        kit::style::strong.lineHeight);
    const int top = topPadding + kit::style::strong.lineHeight + titleGap;
    const int wide = std::max(width() - 2 * padding, 0);
    map_->setGeometry(padding, top, wide, map_->heightForWidth(wide));
}

void HeatMapCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    kit::drawCardGround(painter, rect());
    const QString more = qString(content_.more);
    const QString less = qString(content_.less);
    const double line = kit::style::strong.lineHeight;
    double right = width() - padding - kit::textWidth(more, kit::style::small);
    painter.setPen(kit::color(kit::ColorRole::ink2));
    kit::drawText(painter, QRectF(right, topPadding, padding * 8, line), Qt::AlignLeft, more,
                  kit::style::small);
    const kit::LogoLook& logo = providerLogo(content_.agent);
    const kit::HeatMapLook look{logo.accentLight, logo.accentDark, {}, {}, {}};
    right -= 2 * stepGap;
    for (int level = HeatMapContent::levels - 1; level >= 0; --level) {
        right -= stepSide;
        painter.setPen(Qt::NoPen);
        painter.setBrush(kit::heatColor(look, level));
        painter.drawRoundedRect(
            QRectF(right, topPadding + (line - stepSide) / 2, stepSide, stepSide), 3, 3);
        right -= stepGap;
    }
    const double words = kit::textWidth(less, kit::style::small);
    painter.setPen(kit::color(kit::ColorRole::ink2));
    kit::drawText(painter, QRectF(right - stepGap - words, topPadding, words, line), Qt::AlignLeft,
                  less, kit::style::small);
}

// --- the figures

namespace {
constexpr int figureLine = kit::style::figureSmall.lineHeight;
constexpr int captionGap = 2;
constexpr int wordGap = 5;
constexpr int columnGap = 16;
constexpr int figureRowGap = 14;
constexpr int leastColumn = 120;
constexpr int mostCaptionLines = 3;
constexpr int mostWordLines = 3;
} // namespace

class FiguresCard::Figure {
public:
    explicit Figure(QWidget* parent)
        : figure_(new kit::Label(kit::style::figureSmall, kit::ColorRole::ink, parent)),
          word_(new kit::Label(kit::style::row, kit::ColorRole::ink2, parent)),
          caption_(new kit::Label(kit::style::small, kit::ColorRole::ink2, parent)) {
        caption_->setMostLines(mostCaptionLines);
        word_->setMostLines(mostWordLines);
        for (kit::Label* label : {figure_, word_, caption_}) {
            label->show();
        }
    }
    ~Figure() {
        delete figure_;
        delete word_;
        delete caption_;
    }
    Figure(const Figure&) = delete;
    Figure& operator=(const Figure&) = delete;

    void setContent(const HistoryFigure& content) {
        figure_->setWords(qString(content.figure));
        word_->setWords(qString(content.word));
        caption_->setWords(qString(content.caption));
    }
    int heightForWidth(int width) const {
        return captionTop(width) + caption_->heightForWidth(width);
    }
    void place(int left, int top, int width) const {
        const int figure = std::min(figure_->wantedWidth(), width);
        figure_->setGeometry(left, top, figure, figureLine);
        if (isWordBeside(width)) {
            const int drop = static_cast<int>(kit::baseline(kit::style::figureSmall) -
                                              kit::baseline(kit::style::row));
            word_->setGeometry(left + figure + wordGap, top + drop, width - figure - wordGap,
                               kit::style::row.lineHeight);
        } else {
            word_->setGeometry(left, top + figureLine, width, word_->heightForWidth(width));
        }
        caption_->setGeometry(left, top + captionTop(width), width,
                              caption_->heightForWidth(width));
    }

private:
    /// A word that has no room beside its figure has lines for itself.
    bool isWordBeside(int width) const {
        return figure_->wantedWidth() + wordGap + word_->wantedWidth() <= width;
    }
    int captionTop(int width) const {
        return figureLine + captionGap + (isWordBeside(width) ? 0 : word_->heightForWidth(width));
    }

    kit::Label* figure_;
    kit::Label* word_;
    kit::Label* caption_;
};

FiguresCard::FiguresCard(QWidget* parent)
    : QWidget(parent), title_(new kit::Label(kit::style::strong, kit::ColorRole::ink, this)),
      note_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)) {
    note_->setMostLines(3);
}

FiguresCard::~FiguresCard() = default;

void FiguresCard::setContent(const HistoryPageContent& content) {
    title_->setWords(qString(content.figuresTitle));
    while (figures_.size() > content.figures.size()) {
        figures_.pop_back();
    }
    while (figures_.size() < content.figures.size()) {
        figures_.push_back(std::make_unique<Figure>(this));
    }
    for (std::size_t index = 0; index < figures_.size(); ++index) {
        figures_[index]->setContent(content.figures[index]);
    }
    note_->setWords(qString(content.figuresNote));
    note_->setVisible(!content.figuresNote.empty());
    arrange(width(), true);
}

int FiguresCard::arrange(int width, bool isReal) const {
    const int wide = std::max(width - 2 * padding, 1);
    const int columns = std::clamp((wide + columnGap) / (leastColumn + columnGap), 1, 3);
    const int column = (wide - (columns - 1) * columnGap) / columns;
    int top = topPadding;
    if (isReal) {
        title_->setGeometry(padding, top, wide, kit::style::strong.lineHeight);
    }
    top += kit::style::strong.lineHeight + titleGap;
    const auto count = figures_.size();
    for (std::size_t first = 0; first < count; first += static_cast<std::size_t>(columns)) {
        int high = 0;
        for (std::size_t index = first;
             index < std::min(count, first + static_cast<std::size_t>(columns)); ++index) {
            high = std::max(high, figures_[index]->heightForWidth(column));
            if (isReal) {
                const int left = padding + static_cast<int>(index - first) * (column + columnGap);
                figures_[index]->place(left, top, column);
            }
        }
        top += high + figureRowGap;
    }
    if (!note_->text().isEmpty()) {
        const int high = note_->heightForWidth(wide);
        if (isReal) {
            note_->setGeometry(padding, top, wide, high);
        }
        top += high + figureRowGap;
    }
    return top;
}

int FiguresCard::heightForWidth(int width) const {
    return arrange(width, false);
}

void FiguresCard::resizeEvent(QResizeEvent* /*event*/) {
    arrange(width(), true);
}

void FiguresCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    kit::drawCardGround(painter, rect());
}

} // namespace vellmark
