#include "presentation/NoticeMemory.h"

#include "platform/RegularFile.h"
#include "platform/ReplacementFile.h"
#include "platform/WholeFile.h"
#include "text/BoundedJSON.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

constexpr std::size_t mostWindows = 200;
/// Two hundred windows take a tenth of it.
constexpr std::size_t mostBytes = std::size_t{1} << 20;

constexpr std::array kindNames{
    std::pair{NoticeKind::critical, "critical"}, std::pair{NoticeKind::runsOut, "runsOut"},
    std::pair{NoticeKind::usedUp, "usedUp"},     std::pair{NoticeKind::back, "back"},
    std::pair{NoticeKind::reset, "reset"},       std::pair{NoticeKind::expires, "expires"},
    std::pair{NoticeKind::unread, "unread"},
};

// Members of another type count as absent.

std::string text(const JSON& object, const char* name) {
    const auto member = object.find(name);
    return member != object.end() && member->is_string() ? member->get<std::string>() : "";
}

double number(const JSON& object, const char* name) {
    const auto member = object.find(name);
    return member != object.end() && member->is_number() ? member->get<double>() : 0;
}

bool flag(const JSON& object, const char* name) {
    const auto member = object.find(name);
    return member != object.end() && member->is_boolean() && member->get<bool>();
}

std::optional<Instant> instant(const JSON& object, const char* name) {
    const auto member = object.find(name);
    return member != object.end() && member->is_number()
               ? std::optional(Instant(Seconds(member->get<double>())))
               : std::nullopt;
}

void put(JSON& object, const char* name, const std::optional<Instant>& instant) {
    if (instant) {
        object[name] = instant->time_since_epoch().count();
    }
}

void put(JSON& object, const char* name, bool value) {
    if (value) {
        object[name] = true;
    }
}

JSON windowJSON(const WindowKey& key, const PeriodMemory& period) {
    JSON object{{"agent", key.first.rawValue},
                {"window", key.second},
                {"used", period.usedPercent},
                {"readAt", period.readAt.time_since_epoch().count()}};
    put(object, "endsAt", period.endsAt);
    put(object, "muted", period.isMuted);
    put(object, "wasUsedUp", period.wasUsedUp);
    put(object, "isBack", period.isBack);
    put(object, "hasReset", period.hasReset);
    JSON said = JSON::array();
    for (const auto& [kind, name] : kindNames) {
        if (period.said.contains(kind)) {
            said.push_back(name);
        }
    }
    object["said"] = std::move(said);
    return object;
}

PeriodMemory periodOf(const JSON& object) {
    PeriodMemory period{.endsAt = instant(object, "endsAt"),
                        .usedPercent = number(object, "used"),
                        .readAt = instant(object, "readAt").value_or(Instant()),
                        .said = {},
                        .isMuted = flag(object, "muted"),
                        .wasUsedUp = flag(object, "wasUsedUp"),
                        .isBack = flag(object, "isBack"),
                        .hasReset = flag(object, "hasReset")};
    const auto said = object.find("said");
    for (const auto& [kind, name] : kindNames) {
        if (said != object.end() && said->is_array() &&
            std::ranges::find(*said, JSON(name)) != said->end()) {
            period.said.insert(kind);
        }
    }
    return period;
}

JSON agentJSON(const AgentProviderID& id, const AgentMemory& agent) {
    JSON object{{"agent", id.rawValue}, {"unreadFor", agent.unreadFor.count()}};
    put(object, "saidUnread", agent.saidUnread);
    put(object, "saidExpiry", agent.saidExpiry);
    return object;
}

/// The objects of an array in `document`.
std::vector<JSON> objects(const JSON& document, const char* name) {
    std::vector<JSON> found;
    const auto array = document.is_object() ? document.find(name) : document.end();
    if (array != document.end() && array->is_array()) {
        std::ranges::copy_if(*array, std::back_inserter(found),
                             [](const JSON& element) { return element.is_object(); });
    }
    return found;
}

} // namespace

void NoticeMemory::forgetOldest() {
    while (windows.size() > mostWindows) {
        windows.erase(std::ranges::min_element(
            windows, {}, [](const auto& window) { return window.second.readAt; }));
    }
}

NoticeMemory NoticeMemory::parse(std::string_view text) {
    NoticeMemory memory;
    JSON document;
    try {
        document = parsedJSON(text);
    } catch (const JSONDecodingError&) {
        return memory;
    }
    for (const JSON& object : objects(document, "windows")) {
        memory.windows[{AgentProviderID(vellmark::text(object, "agent")),
                        vellmark::text(object, "window")}] = periodOf(object);
    }
    for (const JSON& object : objects(document, "agents")) {
        memory.agents[AgentProviderID(vellmark::text(object, "agent"))] = {
            .unreadFor = Seconds(number(object, "unreadFor")),
            .saidUnread = flag(object, "saidUnread"),
            .saidExpiry = instant(object, "saidExpiry")};
    }
    memory.forgetOldest();
    return memory;
}

std::string NoticeMemory::text() const {
    JSON document{{"windows", JSON::array()}, {"agents", JSON::array()}};
    for (const auto& [key, period] : windows) {
        document["windows"].push_back(windowJSON(key, period));
    }
    for (const auto& [id, agent] : agents) {
        document["agents"].push_back(agentJSON(id, agent));
    }
    return serialized(document) + "\n";
}

NoticeMemory readNoticeMemory(const std::filesystem::path& file, std::error_code& error) {
    const auto text = readRegularFile(file, mostBytes, error);
    if (!text) {
        if (error == std::errc::no_such_file_or_directory) {
            error.clear();
        }
        return {};
    }
    return NoticeMemory::parse(*text);
}

std::error_code writeNoticeMemory(const std::filesystem::path& file, const NoticeMemory& memory) {
    std::error_code error;
    if (!openRegularFile(file, O_RDWR, error).isOpen() &&
        error != std::errc::no_such_file_or_directory) {
        return error;
    }
    ReplacementFile replacement(file, ReplacementFile::Name::fixed,
                                ReplacementFile::Links::refused);
    replacement.write(memory.text());
    return replacement.commit();
}

} // namespace vellmark
