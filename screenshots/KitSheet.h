#pragma once

#include <QWidget>

namespace vellmark {

/// Everything in the interface kit on one sheet: colours, type, icons, and the controls in their
/// states.
class KitSheet : public QWidget {
public:
    explicit KitSheet(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void addControls();
    void addForm();
    void drawColors(QPainter& painter, int top) const;
    int drawType(QPainter& painter, int top) const;
    void drawIcons(QPainter& painter, int top) const;
    void drawHeading(QPainter& painter, int top, const QString& words) const;
};

} // namespace vellmark
