#include "ui/AgentHead.h"

#include "ui/Conversions.h"
#include "ui/ProviderLogo.h"
#include "ui/kit/HealthDot.h"
#include "ui/kit/Icon.h"
#include "ui/kit/Label.h"
#include "ui/kit/LogoTile.h"

#include <QPainter>

#include <algorithm>

namespace vellmark {

namespace {
constexpr int gap = 8;
} // namespace

AgentHead::AgentHead(const Form& form, QWidget* parent)
    : QWidget(parent), form_(form), logo_(new kit::LogoTile(form.height, this)),
      name_(new kit::Label(form.nameStyle, kit::ColorRole::ink, this)),
      detail_(new kit::Label(kit::style::small, kit::ColorRole::ink2, this)),
      health_(new kit::HealthDot(this)) {}

void AgentHead::setContent(const AgentBlockContent& agent, const QString& detail) {
    logo_->setLook(providerLogo(agent.id));
    name_->setWords(qString(agent.name));
    detail_->setWords(detail);
    health_->setLook(healthLook(agent));
    arrange();
}

void AgentHead::resizeEvent(QResizeEvent* /*event*/) {
    arrange();
}

void AgentHead::arrange() {
    const auto centered = [this](int height) { return (form_.height - height) / 2; };
    logo_->setGeometry(0, 0, form_.height, form_.height);
    const QSize health = health_->sizeHint();
    const int healthLeft = width() - form_.chevronSide - form_.chevronGap - health.width();
    health_->setGeometry(healthLeft, centered(health.height()), health.width(), health.height());
    int left = form_.height + gap;
    const int nameWidth = std::min(name_->wantedWidth(), std::max(healthLeft - gap - left, 0));
    name_->setGeometry(left, centered(form_.nameStyle.lineHeight), nameWidth,
                       form_.nameStyle.lineHeight);
    left += nameWidth + gap;
    detail_->setGeometry(left, centered(kit::style::small.lineHeight) + form_.detailDrop,
                         std::max(healthLeft - gap - left, 0), kit::style::small.lineHeight);
}

void AgentHead::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF chevron(width() - form_.chevronSide, (form_.height - form_.chevronSide) / 2.0,
                         form_.chevronSide, form_.chevronSide);
    kit::drawIcon(painter, chevron, "chevron.right", kit::color(kit::ColorRole::ink3));
}

} // namespace vellmark
