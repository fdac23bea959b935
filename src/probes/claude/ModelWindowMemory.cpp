#include "probes/claude/ModelWindowMemory.h"

#include "model/UsageHistorySample.h"
#include "probes/claude/ClaudeUsageParser.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>

namespace vellmark {

namespace {

/// Reads the history as it streams by, since it may have tens of megabytes, and keeps the latest
/// sighting. Accepts exactly an array of samples: anything else stops the parse.
class SightingReader : public nlohmann::json_sax<nlohmann::json> {
public:
    std::optional<Instant> latest() const { return latest_; }

    bool start_array(std::size_t) override {
        const bool accepted = depth_ == 0 || isIgnored();
        ++depth_;
        return accepted;
    }
    bool end_array() override {
        --depth_;
        return true;
    }
    bool start_object(std::size_t) override {
        const bool isSample = depth_ == 1;
        const bool accepted = isSample || isIgnored();
        if (isSample) {
            sample_ = {};
        }
        ++depth_;
        return accepted;
    }
    bool end_object() override { return --depth_ != 1 || finishSample(); }
    bool key(string_t& name) override {
        if (depth_ == 2) {
            field_ = name;
        }
        return true;
    }

    bool null() override { return isIgnored() || (inSample() && field_ == "resetsAt"); }
    bool boolean(bool) override { return isIgnored(); }
    bool number_integer(number_integer_t value) override {
        return number(static_cast<double>(value));
    }
    bool number_unsigned(number_unsigned_t value) override {
        return number(static_cast<double>(value));
    }
    bool number_float(number_float_t value, const string_t&) override { return number(value); }
    bool string(string_t& value) override;
    bool binary(binary_t&) override { return false; }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
        return false;
    }

private:
    struct Sample {
        bool hasID = false;
        bool hasUsedPercent = false;
        std::optional<bool> isClaude;
        std::optional<bool> isModelWindow;
        std::optional<double> capturedAt;
    };

    bool inSample() const { return depth_ == 2; }

    /// Whether the value that begins here belongs to a field that samples do not have.
    bool isIgnored() const;
    bool number(double value);
    bool finishSample();

    int depth_ = 0;
    std::string field_;
    Sample sample_;
    std::optional<Instant> latest_;
};

bool SightingReader::isIgnored() const {
    static constexpr const char* known[] = {"id",         "provider",    "windowID",
                                            "capturedAt", "usedPercent", "resetsAt"};
    return depth_ >= 2 && std::none_of(std::begin(known), std::end(known),
                                       [this](const char* name) { return field_ == name; });
}

bool SightingReader::string(string_t& value) {
    if (!inSample()) {
        return isIgnored();
    }
    if (field_ == "id") {
        return sample_.hasID = UUID::parse(value).has_value();
    }
    if (field_ == "provider") {
        sample_.isClaude = value == AgentProviderID::claude().rawValue;
        return true;
    }
    if (field_ == "windowID") {
        sample_.isModelWindow = value == claudeModelWindowID;
        return true;
    }
    return isIgnored();
}

bool SightingReader::number(double value) {
    if (!inSample()) {
        return isIgnored();
    }
    if (field_ == "capturedAt") {
        sample_.capturedAt = value;
    } else if (field_ == "usedPercent") {
        sample_.hasUsedPercent = true;
    } else {
        return field_ == "resetsAt" || isIgnored();
    }
    return true;
}

bool SightingReader::finishSample() {
    if (!sample_.hasID || !sample_.hasUsedPercent || !sample_.isClaude || !sample_.isModelWindow ||
        !sample_.capturedAt) {
        return false;
    }
    if (*sample_.isClaude && *sample_.isModelWindow) {
        const Instant seen{Seconds(*sample_.capturedAt)};
        latest_ = latest_ ? std::max(*latest_, seen) : seen;
    }
    return true;
}

std::optional<Instant> latestSighting(const std::filesystem::path& historyFile) {
    std::ifstream file(historyFile, std::ios::binary);
    SightingReader reader;
    if (!file || !nlohmann::json::sax_parse(file, &reader)) {
        return std::nullopt;
    }
    return reader.latest();
}

} // namespace

ModelWindowMemory::ModelWindowMemory(std::optional<std::filesystem::path> historyFile,
                                     std::optional<Instant> lastSeen)
    : lastSeen_(lastSeen), loadedHistory_(!historyFile),
      historyFile_(std::move(historyFile).value_or(std::filesystem::path())) {}

bool ModelWindowMemory::shouldExpectModelWindow(Instant now) {
    const std::lock_guard lock(mutex_);
    if (!loadedHistory_) {
        const std::optional<Instant> sighting = latestSighting(historyFile_);
        if (sighting && (!lastSeen_ || *sighting > *lastSeen_)) {
            lastSeen_ = sighting;
        }
        loadedHistory_ = true;
    }
    return lastSeen_ && now - *lastSeen_ < Seconds(86400);
}

void ModelWindowMemory::markSeen(Instant now) {
    const std::lock_guard lock(mutex_);
    lastSeen_ = now;
}

} // namespace vellmark
