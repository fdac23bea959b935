#pragma once

#include "ui/kit/Interaction.h"
#include "ui/kit/Theme.h"

#include <QWidget>

#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace vellmark::kit {

struct HeatMapLook {
    QColor accentLight;
    QColor accentDark;
    QStringList rowNames;
    /// Below the first row's cells, by column.
    std::map<int, QString> columnNames;
    /// Of each row; 0 is empty, 5 the fullest.
    std::vector<std::vector<int>> levels;
    bool operator==(const HeatMapLook&) const = default;
};

/// The colour of a level on a card.
QColor heatColor(const HeatMapLook& look, int level);

/// Rows of cells in five steps of a colour, as large as the width allows. Every cell can be read:
/// by the pointer, and by the arrow keys, Home and End.
class HeatMap : public QWidget {
public:
    static constexpr int lastLevel = 5;

    explicit HeatMap(QWidget* parent = nullptr);
    void setLook(const HeatMapLook& look);
    /// What a cell says, beside it.
    std::function<QString(int row, int column)> wordsAt;

    struct Cell {
        int row = 0;
        int column = 0;
        bool operator==(const Cell&) const = default;
    };
    const std::optional<Cell>& cell() const { return cell_; }
    /// For assistive software; empty when no cell is read.
    QString spoken() const;

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    double side(int width) const;
    QRectF place(Cell cell) const;
    int columns() const;
    void read(std::optional<Cell> cell, const QPoint& beside);

    HeatMapLook look_;
    std::optional<Cell> cell_;
    Interaction interaction_;
};

} // namespace vellmark::kit
