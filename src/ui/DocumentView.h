#pragma once

#include "presentation/LegalDocument.h"

#include <QWidget>

#include <vector>

namespace vellmark {

namespace kit {
class Label;
}

/// A longer text to read: headings, paragraphs, lists. As high as the text is at its width, which
/// has no more room than is good to read; told to screen readers part by part.
class DocumentView : public QWidget {
public:
    static constexpr int mostTextWidth = 600;

    explicit DocumentView(QWidget* parent = nullptr);

    void setBlocks(const std::vector<TextBlock>& blocks);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Part {
        TextBlock::Kind kind;
        kit::Label* label;
    };
    /// The parts' places at a width; the last is followed by nothing.
    std::vector<QRect> places(int width) const;

    std::vector<Part> parts_;
};

} // namespace vellmark
