#include "presentation/LaunchAtLoginController.h"

#include <string_view>
#include <system_error>
#include <utility>

namespace vellmark {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view setupDoneKey = "LaunchAtLoginInitialSetupDone";
constexpr std::string_view registeredPathKey = "LaunchAtLoginRegisteredPath";

} // namespace

LaunchAtLoginController::LaunchAtLoginController(Preferences& preferences,
                                                 std::unique_ptr<LoginItem> item)
    : preferences_(preferences), item_(std::move(item)) {}

LaunchAtLoginController::State LaunchAtLoginController::state() const {
    if (!item_) {
        return State::unavailable;
    }
    switch (item_->state()) {
    case LoginItem::State::on:
        return State::on;
    case LoginItem::State::needsApproval:
        return State::needsApproval;
    case LoginItem::State::off:
        break;
    }
    return State::off;
}

std::string LaunchAtLoginController::setEnabled(bool enabled) {
    if (!item_) {
        return {};
    }
    std::string refusal = item_->setEnabled(enabled);
    if (refusal.empty() && enabled) {
        preferences_.setString(registeredPathKey, item_->program().string());
    } else if (refusal.empty()) {
        preferences_.remove(registeredPathKey);
    }
    return refusal;
}

void LaunchAtLoginController::openSystemSettings() const {
    if (item_) {
        item_->openSystemSettings();
    }
}

void LaunchAtLoginController::setUpOnce() {
    if (!item_ || preferences_.boolean(setupDoneKey).value_or(false)) {
        return;
    }
    preferences_.setBoolean(setupDoneKey, true);
    setEnabled(true);
}

std::optional<LaunchAtLoginController::Move> LaunchAtLoginController::followMove() {
    if (!item_ || item_->state() != LoginItem::State::on) {
        return std::nullopt;
    }
    std::optional<fs::path> from = item_->registeredProgram();
    if (const auto kept = preferences_.string(registeredPathKey); !from && kept) {
        from = *kept;
    }
    std::error_code ignored;
    // Another copy that is run beside the registered one is no move.
    if (!from || *from == item_->program() || fs::exists(*from, ignored)) {
        return std::nullopt;
    }
    const Move move{std::move(*from), item_->program()};
    return setEnabled(true).empty() ? std::optional(move) : std::nullopt;
}

} // namespace vellmark
