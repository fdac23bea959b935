#include "ui/window/AboutPage.h"

#include "ui/Conversions.h"
#include "ui/GlyphPainter.h"
#include "ui/kit/Button.h"
#include "ui/kit/CardGround.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Label.h"
#include "ui/kit/ScrollArea.h"
#include "ui/window/LicenceRow.h"
#include "ui/window/PageHead.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace vellmark {

namespace {

constexpr int margin = PageHead::margin;
constexpr int emblemSide = 64;
constexpr int emblemGap = 20;
constexpr int sectionGap = 28;
constexpr int lineGap = 4;
constexpr int buttonGap = 8;

} // namespace

class AboutPage::Column : public QWidget {
public:
    QRect licences;

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        paintGlyph(painter, {margin, 0}, emblemSide, emblem, kit::color(kit::ColorRole::ink));
        kit::drawCardGround(painter, licences);
        for (int top = licences.top() + LicenceRow::rowHeight; top < licences.bottom();
             top += LicenceRow::rowHeight) {
            painter.fillRect(QRect(licences.left(), top, licences.width(), 1),
                             kit::color(kit::ColorRole::line));
        }
    }
};

AboutPage::AboutPage(const AboutPageActions& actions, QWidget* parent)
    : WindowPage([] {}, parent), actions_(actions), scroller_(new kit::ScrollArea(this)),
      column_(new Column), name_(addLabel(kit::style::figureSmall, kit::ColorRole::ink)),
      version_(addLabel(kit::style::text, kit::ColorRole::ink2)),
      description_(addLabel(kit::style::body, kit::ColorRole::ink)),
      privacy_(addLabel(kit::style::text, kit::ColorRole::ink2)),
      licencesTitle_(addLabel(kit::style::smallStrong, kit::ColorRole::ink2)),
      introduction_(addLabel(kit::style::text, kit::ColorRole::ink2)) {
    column_->setAutoFillBackground(false);
    scroller_->setWidget(column_);
}

kit::Label* AboutPage::addLabel(const kit::TextStyle& style, kit::ColorRole color) {
    auto* label = new kit::Label(style, color, column_);
    label->setMostLines(kit::anyNumberOfLines);
    return label;
}

void AboutPage::setContent(const AboutPageContent& content) {
    if (content == content_) {
        return;
    }
    content_ = content;
    head().setContent(content.head);
    name_->setWords(qString(content.name));
    version_->setWords(qString(content.version));
    description_->setWords(qString(content.description));
    privacy_->setWords(qString(content.privacy));
    licencesTitle_->setWords(qString(content.licencesTitle));
    introduction_->setWords(qString(content.licencesIntroduction));
    while (links_.size() < content.links.size()) {
        auto* button = new kit::Button(kit::Button::Kind::normal, column_);
        const std::size_t index = links_.size();
        connect(button, &QAbstractButton::clicked, this,
                [this, index] { actions_.open(content_.links[index].link); });
        button->show();
        links_.push_back(button);
    }
    for (std::size_t index = 0; index < links_.size(); ++index) {
        links_[index]->setText(qString(content.links[index].title));
        links_[index]->setIconName(content.links[index].opensBrowser ? "arrow.up.right" : "");
    }
    while (licences_.size() < content.licences.size()) {
        licences_.push_back(new LicenceRow(actions_, column_));
        licences_.back()->show();
    }
    for (std::size_t index = 0; index < licences_.size(); ++index) {
        licences_[index]->setContent(content.licences[index]);
    }
    arrange();
}

std::vector<QWidget*> AboutPage::controls() const {
    std::vector<QWidget*> result = head().controls();
    result.insert(result.end(), links_.begin(), links_.end());
    for (const LicenceRow* row : licences_) {
        result.push_back(row->button());
    }
    return result;
}

void AboutPage::scrollToTop() {
    scroller_->verticalScrollBar()->setValue(0);
}

void AboutPage::arrange() {
    scroller_->setGeometry(body());
    const int wide = std::max(width() - 2 * margin, 1);
    int top = arrangeProgram(wide);
    top = arrangeLinks(top + 16, wide);
    top = arrangeLicences(top + sectionGap, wide);
    column_->setFixedHeight(top + margin);
    column_->update();
}

void AboutPage::keyPressEvent(QKeyEvent* event) {
    if (!scroller_->scrollByKey(event->key())) {
        WindowPage::keyPressEvent(event);
    }
}

int AboutPage::arrangeProgram(int wide) {
    const int left = margin + emblemSide + emblemGap;
    const int right = margin + wide;
    const auto place = [&](kit::Label* label, int top) {
        const int height = label->heightForWidth(right - left);
        label->setGeometry(left, top, right - left, height);
        return top + height;
    };
    int top = place(name_, 0);
    top = place(version_, top);
    top = place(description_, top + 2 * lineGap);
    top = place(privacy_, top + lineGap);
    return std::max(top, emblemSide);
}

int AboutPage::arrangeLinks(int top, int wide) {
    int left = margin + emblemSide + emblemGap;
    int height = 0;
    for (kit::Button* link : links_) {
        const QSize size = link->sizeHint();
        if (left + size.width() > margin + wide) {
            left = margin + emblemSide + emblemGap;
            top += size.height() + buttonGap;
        }
        link->setGeometry(left, top, size.width(), size.height());
        left += size.width() + buttonGap;
        height = size.height();
    }
    return top + height;
}

int AboutPage::arrangeLicences(int top, int wide) {
    for (kit::Label* label : {licencesTitle_, introduction_}) {
        const int height = label->heightForWidth(wide);
        label->setGeometry(margin, top, wide, height);
        top += height + lineGap;
    }
    top += lineGap;
    column_->licences =
        QRect(margin, top, wide, LicenceRow::rowHeight * static_cast<int>(licences_.size()));
    for (LicenceRow* row : licences_) {
        row->setGeometry(margin, top, wide, LicenceRow::rowHeight);
        top += LicenceRow::rowHeight;
    }
    return top;
}

} // namespace vellmark
