#pragma once

#include "Scenario.h"

#include <string>
#include <vector>

namespace simulator {

using Arguments = std::vector<std::string>;

/// Each plays one CLI to its end and returns its exit status.
int playClaude(const Scenario& scenario, const Arguments& arguments);
int playCodex(const Scenario& scenario, const Arguments& arguments);
int playAntigravity(const Scenario& scenario, const Arguments& arguments);

/// Plays the downloader of the vendors' install commands: what it "downloads" installs the
/// simulated agent. Nothing leaves this machine.
int playDownload(const Scenario& scenario, const Arguments& arguments);

} // namespace simulator
