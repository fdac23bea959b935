#pragma once

#include "presentation/HistoryPageContent.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vellmark {

namespace kit {
class HeatMap;
class Label;
class LegendKey;
} // namespace kit
class ChartView;

/// The chart of an agent's windows with its legend.
class HistoryChartCard : public QWidget {
public:
    explicit HistoryChartCard(QWidget* parent);
    void setContent(const HistoryPageContent& content);
    /// Shows or hides a line.
    std::function<void(const std::string& windowID)> onToggle;
    std::vector<QWidget*> controls() const;
    ChartView* chart() const { return chart_; }
    /// The card as a picture, for keeping.
    std::string pictureData();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void arrange();

    std::vector<HistoryLegendItem> items_;
    std::vector<kit::LegendKey*> keys_;
    QString resetWord_;
    ChartView* chart_;
    kit::Label* note_;
};

/// When a quota is used, by weekday and hour.
class HeatMapCard : public QWidget {
public:
    explicit HeatMapCard(QWidget* parent);
    void setContent(const HeatMapContent& content);
    kit::HeatMap* map() const { return map_; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    HeatMapContent content_;
    kit::Label* title_;
    kit::HeatMap* map_;
};

/// Figures, each with its word and what it means.
class FiguresCard : public QWidget {
public:
    explicit FiguresCard(QWidget* parent);
    ~FiguresCard() override;
    void setContent(const HistoryPageContent& content);
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    class Figure;
    /// Puts everything into place when `isReal`; answers the height.
    int arrange(int width, bool isReal) const;

    kit::Label* title_;
    std::vector<std::unique_ptr<Figure>> figures_;
    kit::Label* note_;
};

} // namespace vellmark
