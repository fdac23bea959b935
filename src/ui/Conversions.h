#pragma once

#include "presentation/AgentBlockContent.h"
#include "presentation/SettingsPageContent.h"
#include "presentation/StatusColor.h"
#include "probes/ProviderRegistry.h"
#include "ui/kit/HealthDot.h"
#include "ui/kit/Question.h"
#include "ui/kit/Theme.h"

#include <QString>

#include <optional>
#include <string_view>

namespace vellmark {

/// From the core's plain values to the kit's forms.

QString qString(std::string_view text);

/// The mark's colour for a health.
kit::ColorRole markColor(UsageHealth health);
std::optional<kit::ColorRole> badgeColor(const std::optional<UsageHealth>& badge);
kit::ColorRole dotColor(StatusColorRole role);
QColor qColor(const ColorComponents& color);

/// The state at the end of an agent's head: dot and word, or clock and age.
kit::HealthLook healthLook(const AgentBlockContent& agent);
kit::Question::Look questionLook(const QuestionContent& question);
/// Account and plan on one line, as far as they are known.
QString accountLine(const AgentBlockContent& agent);

} // namespace vellmark
