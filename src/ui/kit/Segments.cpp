#include "ui/kit/Segments.h"

#include "ui/kit/FigureText.h"
#include "ui/kit/Interaction.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Theme.h"

#include <QAbstractButton>
#include <QPainter>

#include <cmath>
#include <optional>

namespace vellmark::kit {

namespace {
constexpr int inset = 2;
constexpr int logoSide = 16;
constexpr int logoGap = 8;

struct Measures {
    int height;
    int padding;
    double radius;
    const TextStyle& words;
};

const Measures& measures(Segments::Size size) {
    static const Measures normal{28, 12, 7, style::row};
    static const Measures small{22, 8, 6, style::smallMedium};
    return size == Segments::Size::small ? small : normal;
}
} // namespace

class Segments::Part : public QAbstractButton {
public:
    Part(Size size, QWidget* parent)
        : QAbstractButton(parent), measures_(measures(size)),
          interaction_(this, FocusShape{measures_.radius - inset, 0}) {
        setCheckable(true);
        setAutoExclusive(true);
        setFocusPolicy(Qt::StrongFocus);
    }

    void setLogo(const std::optional<LogoLook>& logo) {
        logo_ = logo;
        update();
    }

    QSize sizeHint() const override {
        const double words = textWidth(text(), measures_.words);
        return {static_cast<int>(std::ceil(words)) + 2 * measures_.padding + logoRoom(),
                measures_.height - 2 * inset};
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
        const double corner = measures_.radius - inset;
        if (isChecked()) {
            painter.setPen(QPen(color(ColorRole::segmentOnLine), 1));
            painter.setBrush(color(ColorRole::segmentOn));
            painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), corner, corner);
        } else if (isDown() || interaction_.hover() > 0) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(isDown() ? color(ColorRole::fillPressed)
                                      : mixed(color(ColorRole::fill), color(ColorRole::fillHover),
                                              interaction_.hover()));
            painter.drawRoundedRect(rect(), corner, corner);
        }
        painter.setPen(color(isChecked() ? ColorRole::ink : ColorRole::ink2));
        drawText(painter, rect().adjusted(logoRoom(), 0, 0, 0), Qt::AlignHCenter, text(),
                 measures_.words);
        if (logo_) {
            drawLogo(painter, QPointF(measures_.padding, (height() - logoSide) / 2.0), logoSide,
                     *logo_);
        }
    }

private:
    int logoRoom() const { return logo_ ? logoSide + logoGap : 0; }

    std::optional<LogoLook> logo_;
    const Measures& measures_;
    Interaction interaction_;
};

Segments::Segments(Size size, QWidget* parent) : QWidget(parent), size_(size) {}

void Segments::setChoices(const QStringList& choices, const std::vector<LogoLook>& logos) {
    while (static_cast<qsizetype>(parts_.size()) > choices.size()) {
        delete parts_.back();
        parts_.pop_back();
    }
    while (static_cast<qsizetype>(parts_.size()) < choices.size()) {
        auto* part = new Part(size_, this);
        const int index = static_cast<int>(parts_.size());
        connect(part, &QAbstractButton::clicked, this, [this, index] {
            if (onChoose) {
                onChoose(index);
            }
        });
        parts_.push_back(part);
        part->show();
    }
    for (std::size_t index = 0; index < parts_.size(); ++index) {
        parts_[index]->setText(choices[static_cast<qsizetype>(index)]);
        parts_[index]->setLogo(index < logos.size() ? std::optional(logos[index]) : std::nullopt);
    }
    arrange();
    updateGeometry();
}

void Segments::setCurrent(int index) {
    for (std::size_t each = 0; each < parts_.size(); ++each) {
        Part* part = parts_[each];
        // Buttons that exclude each other cannot all be off.
        part->setAutoExclusive(false);
        part->setChecked(static_cast<int>(each) == index);
        part->setAutoExclusive(true);
        // Tab leads to the chosen part alone, to the first where none is, arrows from there on.
        const bool isTabStop = part->isChecked() || (index < 0 && each == 0);
        part->setFocusPolicy(isTabStop ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

int Segments::current() const {
    for (std::size_t index = 0; index < parts_.size(); ++index) {
        if (parts_[index]->isChecked()) {
            return static_cast<int>(index);
        }
    }
    return -1;
}

std::vector<QWidget*> Segments::controls() const {
    return {parts_.begin(), parts_.end()};
}

QSize Segments::sizeHint() const {
    int width = 2 * inset;
    for (const Part* part : parts_) {
        width += part->sizeHint().width();
    }
    return {width, measures(size_).height};
}

void Segments::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void Segments::arrange() {
    int left = inset;
    for (Part* part : parts_) {
        const QSize wanted = part->sizeHint();
        part->setGeometry(left, inset, wanted.width(), wanted.height());
        left += wanted.width();
    }
}

void Segments::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color(ColorRole::fill));
    painter.drawRoundedRect(rect(), measures(size_).radius, measures(size_).radius);
}

} // namespace vellmark::kit
