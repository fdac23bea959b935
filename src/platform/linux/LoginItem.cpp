#include "platform/LoginItem.h"

#include "platform/ProgramPath.h"
#include "platform/SystemDirectories.h"
#include "platform/linux/AutostartEntry.h"

#include <system_error>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

/// The desktop program, which lies beside the terminal's; packed as an image, the image.
fs::path desktopProgram(const Machine& machine) {
    if (const fs::path image = absolutePathVariable(machine.environment, "APPIMAGE");
        !image.empty()) {
        return image;
    }
    const fs::path self = programPath();
    if (self.empty()) {
        return {};
    }
    std::error_code ignored;
    const fs::path program = self.parent_path() / "vellmark-desktop";
    return fs::exists(program, ignored) ? program : fs::path();
}

} // namespace

std::unique_ptr<LoginItem> makeLoginItem(const Machine& machine) {
    if (machine.isSandbox()) {
        return nullptr;
    }
    const fs::path program = desktopProgram(machine);
    return program.empty() ? nullptr
                           : makeAutostartEntry(machine.configuration / "autostart", program);
}

} // namespace vellmark
