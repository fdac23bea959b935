#include "platform/CommandLineTool.h"

#include <algorithm>
#include <string>
#include <unistd.h>
#include <utility>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

constexpr const char* installedLink = "/usr/local/bin/vellmark";

bool isInBundle(const fs::path& desktopProgram) {
    const fs::path folder = desktopProgram.parent_path();
    return folder.filename() == "MacOS" && folder.parent_path().filename() == "Contents" &&
           folder.parent_path().parent_path().extension() == ".app";
}

/// "Vellmark.app/Contents/Helpers/vellmark", wherever the bundle is.
fs::path placeInBundle(const fs::path& program) {
    constexpr int components = 4;
    fs::path place;
    fs::path rest = program;
    for (int count = 0; count < components; ++count) {
        place = place.empty() ? rest.filename() : rest.filename() / place;
        rest = rest.parent_path();
    }
    return place;
}

bool isThere(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

} // namespace

CommandLineTool::CommandLineTool(fs::path program, fs::path link)
    : program_(std::move(program)), link_(std::move(link)) {}

CommandLineTool::State CommandLineTool::state() const {
    std::error_code error;
    const fs::file_status status = fs::symlink_status(link_, error);
    if (status.type() == fs::file_type::not_found) {
        return State::off;
    }
    if (!fs::is_symlink(status)) {
        return State::foreign;
    }
    const fs::path target = fs::read_symlink(link_, error);
    if (target == program_) {
        return State::on;
    }
    if (fs::equivalent(link_, program_, error)) {
        return State::kept;
    }
    return target.is_absolute() && placeInBundle(target) == placeInBundle(program_) &&
                   !isThere(target)
               ? State::leftBehind
               : State::foreign;
}

bool CommandLineTool::mayChange() const {
    fs::path folder = link_.parent_path();
    while (folder.has_relative_path() && !isThere(folder)) {
        folder = folder.parent_path();
    }
    return ::access(folder.c_str(), W_OK | X_OK) == 0;
}

std::error_code CommandLineTool::setOn(bool isOn) const {
    const State now = state();
    if (now == (isOn ? State::on : State::off)) {
        return {};
    }
    if (now == State::foreign || now == State::kept) {
        return std::make_error_code(std::errc::file_exists);
    }
    std::error_code error;
    if (now != State::off && (!fs::remove(link_, error) || error)) {
        return error;
    }
    if (isOn) {
        fs::create_directories(link_.parent_path(), error);
        if (!error) {
            // Fails where something has come meanwhile.
            fs::create_symlink(program_, link_, error);
        }
    }
    return error;
}

fs::path terminalProgram(const fs::path& desktopProgram) {
    const fs::path folder = desktopProgram.parent_path();
    return isInBundle(desktopProgram) ? folder.parent_path() / "Helpers" / "vellmark"
                                      : folder / "vellmark";
}

std::optional<CommandLineTool> bundledCommandLineTool(const Machine& machine,
                                                      const fs::path& desktopProgram) {
    // Where a quarantined bundle is run from is gone after a restart.
    const bool isPassing =
        std::ranges::find(desktopProgram, fs::path("AppTranslocation")) != desktopProgram.end();
    if (machine.isSandbox() || !isInBundle(desktopProgram) || isPassing ||
        !isThere(terminalProgram(desktopProgram))) {
        return std::nullopt;
    }
    return CommandLineTool(terminalProgram(desktopProgram), installedLink);
}

} // namespace vellmark
