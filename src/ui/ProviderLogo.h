#pragma once

#include "model/AgentProviderID.h"
#include "ui/kit/LogoTile.h"

namespace vellmark {

/// How an agent's logo looks: the first of its registered sources that yields an image (files
/// everywhere, application icons where the system has them), else its letter in its accent colour.
/// Sources are looked at once per run. Main thread.
const kit::LogoLook& providerLogo(const AgentProviderID& id);

} // namespace vellmark
