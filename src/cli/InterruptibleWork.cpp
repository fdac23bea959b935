#include "cli/InterruptibleWork.h"

#include "cli/Subcommand.h"
#include "cli/TerminalLoop.h"
#include "process/BoundedProcess.h"

#include <exception>
#include <thread>

namespace vellmark {

int runInterruptibly(const CommandContext& context, const std::string& progress,
                     const std::function<void()>& work) {
    TerminalLoop loop;
    ProgressLine line(context.errors);
    if (!progress.empty()) {
        line.show(progress);
    }
    std::exception_ptr fault;
    std::thread worker([&] {
        try {
            work();
        } catch (...) {
            fault = std::current_exception();
        }
        loop.post([&loop] { loop.stop(ExitStatus::done); });
    });
    const int status = loop.run();
    if (loop.endingSignal() != 0) {
        terminateAllChildren(Seconds(1));
    }
    worker.join();
    if (fault && loop.endingSignal() == 0) {
        std::rethrow_exception(fault);
    }
    return status;
}

} // namespace vellmark
