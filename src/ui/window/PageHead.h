#pragma once

#include "presentation/PopoverContent.h"

#include <QWidget>

namespace vellmark {

namespace kit {
class Button;
class Label;
} // namespace kit

/// The head of a page, 92 high and as wide as the page, so that the button's focus ring has room:
/// title and subtitle, at the right the age of the figures and the refresh button.
class PageHead : public QWidget {
public:
    static constexpr int headHeight = 92;
    /// At both sides, as of everything below the head.
    static constexpr int margin = 28;

    explicit PageHead(QWidget* parent = nullptr);

    void setTitle(const QString& title, const QString& subtitle);
    void setAge(const QString& age);
    /// `titles` are all that the button may say.
    void setRefresh(const ControlContent& refresh, const std::vector<std::string>& titles,
                    bool isRefreshing);
    kit::Button* refreshButton() const { return refresh_; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    kit::Label* title_;
    kit::Label* subtitle_;
    kit::Label* age_;
    kit::Button* refresh_;
};

} // namespace vellmark
