#pragma once

#include <QScrollArea>

namespace vellmark::kit {

class OverlayBar;

/// Scrolls its content up and down. The bar lies over the content's margin, so that what fits and
/// what does not are laid out alike.
class ScrollArea : public QScrollArea {
public:
    explicit ScrollArea(QWidget* parent = nullptr);
    /// Scrolls by an arrow or page key, Home or End; false for any other key.
    bool scrollByKey(int key);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    OverlayBar* overlay_;
};

} // namespace vellmark::kit
