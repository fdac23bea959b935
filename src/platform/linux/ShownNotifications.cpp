#include "platform/linux/ShownNotifications.h"

#include <algorithm>
#include <utility>

namespace vellmark {
namespace {

std::optional<std::uint32_t> known(std::uint32_t number) {
    return number != 0 ? std::optional(number) : std::nullopt;
}

} // namespace

std::optional<ShownNotifications::Sending>
ShownNotifications::post(const NotificationContent& content) {
    Shown& shown = shown_[content.id];
    shown.isClosing = false;
    if (shown.ticket != 0) {
        shown.next = content;
        return std::nullopt;
    }
    return sending(shown, content);
}

std::optional<std::uint32_t> ShownNotifications::close(const std::string& id) {
    const auto found = shown_.find(id);
    if (found == shown_.end()) {
        return std::nullopt;
    }
    if (found->second.ticket != 0) {
        found->second.isClosing = true;
        return std::nullopt;
    }
    const std::uint32_t number = found->second.number;
    shown_.erase(found);
    return known(number);
}

ShownNotifications::Outcome ShownNotifications::answered(std::uint64_t ticket,
                                                         std::optional<std::uint32_t> number) {
    const auto found = std::ranges::find_if(
        shown_, [&](const auto& entry) { return ticket != 0 && entry.second.ticket == ticket; });
    if (found == shown_.end()) {
        return {};
    }
    auto& [id, shown] = *found;
    shown.ticket = 0;
    Outcome outcome;
    if (!number) {
        // What it would have replaced is out of date, and nobody would close it any more.
        outcome.close = known(shown.number);
        outcome.failed = id;
        shown_.erase(found);
        return outcome;
    }
    if (shown.number != *number) {
        // A service with room for one notice has the same number for all.
        outcome.gone = closed(*number);
        shown.number = *number;
    }
    if (shown.isClosing) {
        outcome.close = known(*number);
        shown_.erase(found);
    } else if (auto next = std::exchange(shown.next, std::nullopt)) {
        outcome.send = sending(shown, *std::move(next));
    }
    return outcome;
}

std::optional<std::string> ShownNotifications::closed(std::uint32_t number) {
    const auto found = find(number);
    if (found == shown_.end()) {
        return std::nullopt;
    }
    if (found->second.ticket != 0) {
        // What is under way will be shown all the same.
        shown_[found->first].number = 0;
        return std::nullopt;
    }
    std::string id = found->first;
    shown_.erase(found);
    return id;
}

std::optional<std::string> ShownNotifications::idOf(std::uint32_t number) const {
    const auto found = find(number);
    return found == shown_.end() ? std::nullopt : std::optional(found->first);
}

bool ShownNotifications::isUnderWay(const std::string& id) const {
    const auto found = shown_.find(id);
    return found != shown_.end() && found->second.ticket != 0;
}

std::vector<std::string> ShownNotifications::lost() {
    std::vector<std::string> underWay;
    for (const auto& [id, shown] : std::exchange(shown_, {})) {
        if (shown.ticket != 0) {
            underWay.push_back(id);
        }
    }
    return underWay;
}

ShownNotifications::Sending ShownNotifications::sending(Shown& shown, NotificationContent content) {
    shown.ticket = ++lastTicket_;
    return {shown.ticket, shown.number, std::move(content)};
}

ShownNotifications::Entries::const_iterator ShownNotifications::find(std::uint32_t number) const {
    return std::ranges::find_if(
        shown_, [&](const auto& entry) { return number != 0 && entry.second.number == number; });
}

} // namespace vellmark
