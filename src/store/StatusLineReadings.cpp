#include "store/StatusLineReadings.h"

#include "model/UsageJSON.h"
#include "model/UsageRules.h"
#include "platform/ReplacementFile.h"
#include "platform/WholeFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace vellmark {

namespace {

constexpr std::size_t mostReadingBytes = 1u << 20;
constexpr std::size_t mostSessions = 64;
/// No window is longer.
constexpr Seconds forgottenAfter = 8 * oneDay;

JSON toJSON(const SessionFigures& figures) {
    JSON windows = JSON::array();
    for (const UsageWindow& window : figures.windows) {
        windows.push_back(vellmark::toJSON(window));
    }
    return {{"session", figures.session},
            {"turn", figures.turn},
            {"toldAt", figures.toldAt.time_since_epoch().count()},
            {"windows", std::move(windows)}};
}

/// Throws JSONDecodingError or what the parser throws.
SessionFigures figuresOf(const JSON& json) {
    SessionFigures figures{.session = json.at("session").get<std::string>(),
                           .turn = json.at("turn").get<std::string>(),
                           .toldAt = Instant(Seconds(json.at("toldAt").get<double>()))};
    for (const JSON& each : json.at("windows")) {
        fromJSON(each, figures.windows.emplace_back());
    }
    return figures;
}

} // namespace

StatusLineReadings::StatusLineReadings(std::filesystem::path file) : file_(std::move(file)) {}

std::vector<SessionFigures> StatusLineReadings::read() const {
    std::error_code ignored;
    const auto text = readRegularFile(file_, mostReadingBytes, ignored);
    std::vector<SessionFigures> sessions;
    if (!text) {
        return sessions;
    }
    try {
        for (const JSON& each : parsedJSON(*text)) {
            sessions.push_back(figuresOf(each));
        }
    } catch (const std::exception&) {
        // Sessions tell all of it again.
        sessions.clear();
    }
    return sessions;
}

std::error_code StatusLineReadings::keep(SessionFigures told, Instant now) const {
    // A window whose period is over is told no more, which is nothing new.
    const auto isSame = [&](const SessionFigures& kept) {
        return kept.session == told.session && kept.turn == told.turn && kept.toldAt <= now &&
               std::ranges::all_of(told.windows, [&](const UsageWindow& window) {
                   return std::ranges::find(kept.windows, window) != kept.windows.end();
               });
    };
    if (std::ranges::any_of(read(), isSame)) {
        return {};
    }
    std::error_code error;
    const auto held = FileLock::acquire(std::filesystem::path(file_).replace_extension(".lock"),
                                        FileLock::Seconds(0), error);
    if (!held) {
        return error;
    }
    std::vector<SessionFigures> sessions = read();
    std::erase_if(sessions, [&](const SessionFigures& kept) {
        return kept.session == told.session || kept.toldAt > now ||
               now - kept.toldAt > forgottenAfter;
    });
    told.toldAt = now;
    sessions.push_back(std::move(told));
    if (sessions.size() > mostSessions) {
        sessions.erase(std::ranges::min_element(sessions, {}, &SessionFigures::toldAt));
    }
    JSON document = JSON::array();
    for (const SessionFigures& each : sessions) {
        document.push_back(toJSON(each));
    }
    ReplacementFile replacement(file_, ReplacementFile::Name::fixed,
                                ReplacementFile::Links::refused);
    replacement.write(serialized(document, -1));
    return replacement.commit(ReplacementFile::Durability::sometime);
}

std::vector<UsageWindow> newestWindows(const std::vector<SessionFigures>& sessions, Instant now) {
    std::vector<UsageWindow> newest;
    for (const SessionFigures& figures : sessions) {
        for (UsageWindow window : figures.windows) {
            if (figures.toldAt > now || isDue(window, now)) {
                continue;
            }
            window.readAt = figures.toldAt;
            const auto known = std::ranges::find(newest, window.id, &UsageWindow::id);
            if (known == newest.end()) {
                newest.push_back(std::move(window));
            } else if (known->readAt < window.readAt) {
                *known = std::move(window);
            }
        }
    }
    return newest;
}

void takeNewerWindows(AgentUsageSnapshot& snapshot, const std::vector<UsageWindow>& windows,
                      Instant readAt) {
    bool hasTaken = false;
    const bool isUnread = snapshot.source == SnapshotSource::loading;
    for (const UsageWindow& window : windows) {
        const auto known = std::ranges::find(snapshot.windows, window.id, &UsageWindow::id);
        if (known == snapshot.windows.end()) {
            if (isUnread || readAt < *window.readAt) {
                snapshot.windows.push_back(window);
                hasTaken = true;
            }
        } else if (known->readAt.value_or(readAt) < *window.readAt) {
            known->usedPercent = window.usedPercent;
            known->resetsAt = window.resetsAt;
            known->readAt = window.readAt;
            hasTaken = true;
        }
    }
    if (!hasTaken) {
        return;
    }
    snapshot.notes.push_back({SnapshotNote::StatusLine{}});
    if (isUnread) {
        // These are all that is known.
        snapshot.source = SnapshotSource::live;
        snapshot.updatedAt = *std::ranges::min(snapshot.windows, {}, &UsageWindow::readAt).readAt;
    }
}

} // namespace vellmark
