#include "cli/LivePage.h"

#include <algorithm>

namespace vellmark {

void LivePage::clear() {
    output_.writeData(backToTop());
    shownRows_ = 0;
}

std::string LivePage::backToTop() const {
    // In a terminal that has another width by now the lines are nobody knows where; they stay.
    if (shownRows_ == 0 || output_.width() != shownWidth_) {
        return {};
    }
    return "\r\033[" + std::to_string(shownRows_) + "A\033[J";
}

void LivePage::show(const std::string& text, const std::string& foot) {
    // The cursor stands on a line of its own below.
    const std::size_t room = std::max<std::size_t>(output_.height(), 3) - 1;
    const std::size_t textRoom = foot.empty() ? room : room - 1;
    std::size_t rows = 0;
    std::size_t end = 0;
    while (rows < textRoom && end < text.size()) {
        end = std::min(text.find('\n', end), text.size() - 1) + 1;
        ++rows;
    }
    std::string page = backToTop() + text.substr(0, end);
    if (!foot.empty()) {
        page += output_.styled(TextStyle::dim, output_.cut(output_.shown(foot), output_.width())) +
                "\n";
        ++rows;
    }
    output_.write(page);
    shownRows_ = rows;
    shownWidth_ = output_.width();
}

} // namespace vellmark
