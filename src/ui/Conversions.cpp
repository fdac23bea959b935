#include "ui/Conversions.h"

#include <QStringList>

namespace vellmark {

using kit::ColorRole;

QString qString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

ColorRole markColor(UsageHealth health) {
    switch (health) {
    case UsageHealth::healthy:
        return ColorRole::healthy;
    case UsageHealth::attention:
        return ColorRole::attention;
    case UsageHealth::critical:
        return ColorRole::critical;
    case UsageHealth::unavailable:
        break;
    }
    return ColorRole::none;
}

std::optional<ColorRole> badgeColor(const std::optional<UsageHealth>& badge) {
    return badge ? std::optional(markColor(*badge)) : std::nullopt;
}

ColorRole dotColor(StatusColorRole role) {
    switch (role) {
    case StatusColorRole::healthy:
        return ColorRole::healthy;
    case StatusColorRole::attention:
        return ColorRole::attention;
    case StatusColorRole::critical:
        return ColorRole::critical;
    case StatusColorRole::refreshing:
        return ColorRole::refreshing;
    case StatusColorRole::none:
        break;
    }
    return ColorRole::none;
}

QColor qColor(const ColorComponents& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

kit::HealthLook healthLook(const AgentBlockContent& agent) {
    return {qString(agent.statusText), dotColor(agent.dot),
            agent.showsClock ? "clock" : std::string()};
}

kit::Question::Look questionLook(const QuestionContent& question) {
    return {.title = qString(question.title),
            .words = qString(question.text),
            .deed = qString(question.deed),
            .cancel = qString(question.cancel)};
}

QString accountLine(const AgentBlockContent& agent) {
    QStringList parts;
    for (const std::string& part : {agent.account, agent.plan}) {
        if (!part.empty()) {
            parts << qString(part);
        }
    }
    return parts.join(QStringLiteral(" · "));
}

} // namespace vellmark
