#include "store/LastSnapshots.h"

#include "model/UsageJSON.h"
#include "platform/RegularFile.h"
#include "platform/ReplacementFile.h"
#include "platform/SystemError.h"
#include "platform/WholeFile.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <fcntl.h>
#include <utility>

namespace vellmark {

namespace {

/// Some agents with some windows each take a few thousand bytes.
constexpr std::size_t mostSnapshotBytes = std::size_t{16} << 20;
/// An agent has one. What holds more is nothing that was written here, and each entry that is none
/// would be told.
constexpr std::size_t mostReadings = 1000;

/// What the file holds, each reading by itself.
struct StoredReadings {
    std::vector<AgentUsageSnapshot> readings;
    std::map<std::string, JSON> undecoded; ///< by the agent's name
    bool isDamaged = false;
    std::error_code error;
};

std::string agentOf(const JSON& reading) {
    const auto id = reading.is_object() ? reading.find("id") : reading.end();
    return id != reading.end() && id->is_string() ? id->get<std::string>() : "?";
}

StoredReadings load(const std::filesystem::path& file) {
    StoredReadings stored;
    const auto text = readRegularFile(file, mostSnapshotBytes, stored.error);
    if (!text) {
        if (stored.error == std::errc::no_such_file_or_directory) {
            stored.error.clear();
        }
        return stored;
    }
    JSON document;
    try {
        document = parsedJSON(*text);
    } catch (const JSONDecodingError&) {
        document = nullptr;
    }
    if (!document.is_array() || document.size() > mostReadings) {
        stored.isDamaged = true;
        return stored;
    }
    for (const JSON& element : document) {
        AgentUsageSnapshot reading;
        try {
            fromJSON(element, reading);
            stored.readings.push_back(std::move(reading));
        } catch (const JSONDecodingError&) {
            stored.undecoded.insert_or_assign(agentOf(element), element);
        }
    }
    return stored;
}

} // namespace

void LastSnapshots::Contents::tell(StorageTrouble& trouble) const {
    if (isDamaged) {
        trouble.undecoded();
    }
    for (const std::string& agent : undecoded) {
        trouble.undecoded(agent);
    }
    if (error) {
        trouble.failed(error);
    }
}

LastSnapshots::LastSnapshots(std::filesystem::path file)
    : file_(std::move(file)), lock_(std::filesystem::path(file_).replace_extension(".lock")) {}

LastSnapshots::Contents LastSnapshots::contents() const {
    StoredReadings stored = load(file_);
    Contents contents{std::move(stored.readings), {}, stored.isDamaged, stored.error};
    for (const auto& [agent, reading] : stored.undecoded) {
        contents.undecoded.push_back(agent);
    }
    return contents;
}

std::error_code LastSnapshots::write(const std::map<AgentProviderID, AgentUsageSnapshot>& readings,
                                     Instant now) {
    std::error_code error;
    const auto held = lock_.acquire(error);
    if (!held) {
        // The next refresh brings newer figures anyway.
        return error == std::errc::resource_unavailable_try_again ? std::error_code() : error;
    }
    const bool isWritable = openRegularFile(file_, O_RDWR, error).isOpen();
    if (!isWritable && error != std::errc::no_such_file_or_directory) {
        return error;
    }
    StoredReadings stored = load(file_);
    if (stored.isDamaged) {
        const auto aside = std::filesystem::path(file_).replace_extension(".damaged.json");
        if (std::rename(file_.c_str(), aside.c_str()) != 0) {
            return lastSystemError();
        }
    } else if (stored.error) {
        return stored.error;
    }
    auto merged = readings;
    for (AgentUsageSnapshot& reading : stored.readings) {
        const auto ours = merged.try_emplace(reading.id, reading).first;
        if (ours->second.updatedAt < reading.updatedAt && reading.updatedAt <= now) {
            ours->second = std::move(reading);
        }
    }
    JSON document = JSON::array();
    for (const auto& [id, reading] : merged) {
        document.push_back(toJSON(reading));
    }
    for (auto& [agent, reading] : stored.undecoded) {
        if (!merged.contains(AgentProviderID(agent))) {
            document.push_back(std::move(reading));
        }
    }
    ReplacementFile replacement(file_, ReplacementFile::Name::fixed,
                                ReplacementFile::Links::refused);
    replacement.write(serialized(document));
    return replacement.commit();
}

} // namespace vellmark
