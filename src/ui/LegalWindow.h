#pragma once

#include "presentation/LegalWindowContent.h"

#include <QWidget>

#include <functional>

namespace vellmark {

namespace kit {
class Button;
class Label;
class ScrollArea;
class Segments;
} // namespace kit
class DocumentView;

/// The window with the terms and the privacy notice. While they are to be accepted its foot says so
/// and has the button for it. The arrow and page keys scroll, Escape closes. Main thread.
class LegalWindow final : public QWidget {
public:
    static constexpr QSize firstSize{680, 640};
    static constexpr QSize leastSize{560, 400};

    struct Actions {
        std::function<void(LegalDocument)> choose;
        std::function<void()> accept;
    };

    explicit LegalWindow(Actions actions, QWidget* parent = nullptr);

    void setContent(const LegalWindowContent& content);

    QSize sizeHint() const override { return firstSize; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void arrange();

    Actions actions_;
    LegalWindowContent content_;
    kit::Segments* documents_;
    kit::Label* version_;
    kit::ScrollArea* scroller_;
    QWidget* column_;
    DocumentView* text_;
    kit::Label* notice_;
    kit::Button* close_;
    kit::Button* accept_;
};

} // namespace vellmark
