#pragma once

#include <functional>
#include <string>

namespace vellmark {

struct CommandContext;

/// Runs `work` on a thread of its own and `progress` on the terminal meanwhile (nothing when it is
/// empty). Ctrl-C and the other ending signals end the work's children; `work` must return then.
/// Returns ExitStatus::done, or 128 + the signal. What `work` throws is thrown here.
int runInterruptibly(const CommandContext& context, const std::string& progress,
                     const std::function<void()>& work);

} // namespace vellmark
