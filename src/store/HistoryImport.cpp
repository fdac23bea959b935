#include "store/HistoryImport.h"

#include "model/UsageJSON.h"
#include "store/HistoryThinning.h"
#include "store/PlausibleFigures.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace vellmark {
namespace {

/// How far the clocks of two machines may be apart.
constexpr Seconds clockDifference{3'600};

/// Which samples there are.
class KnownSamples {
public:
    /// False when it is there already, by its identifier or by window and moment.
    bool add(const StoredHistorySample& sample) {
        const auto key = std::pair(std::string(sample.provider), std::string(sample.windowID));
        const std::size_t window = windows_.try_emplace(key, windows_.size()).first->second;
        const bool isNewMoment =
            moments_.emplace(window, std::round(sample.capturedAt * 1'000)).second;
        return ids_.insert(sample.id.bytes).second && isNewMoment;
    }

private:
    std::map<std::pair<std::string, std::string>, std::size_t> windows_;
    std::set<std::pair<std::size_t, double>> moments_; ///< milliseconds
    std::set<std::array<std::uint8_t, 16>> ids_;
};

bool isAcceptable(const StoredHistorySample& sample, Instant now) {
    const Instant captured(Seconds(sample.capturedAt));
    std::optional<Instant> resetsAt;
    if (sample.resetsAt) {
        resetsAt = Instant(Seconds(*sample.resetsAt));
    }
    return !sample.provider.empty() && !sample.windowID.empty() &&
           captured <= now + clockDifference &&
           captured >= now - HistoryThinning::daysKept * oneDay &&
           isPlausibleSample(sample.usedPercent, resetsAt, captured);
}

/// The new samples of the input in the persisted form.
class NewSamples {
public:
    NewSamples(KnownSamples& known, Instant now, HistoryImport& result)
        : known_(known), now_(now), result_(result) {}

    void add(const StoredHistorySample& sample) {
        if (!isAcceptable(sample, now_)) {
            ++result_.refused;
        } else if (!known_.add(sample)) {
            ++result_.known;
        } else {
            ++result_.taken;
            // A line each, whatever the input looks like; unknown fields stay.
            samples_.emplace_back(sample.capturedAt, serialized(parsedJSON(sample.text), -1));
        }
    }

    std::vector<std::string> texts() && {
        std::ranges::stable_sort(samples_, {}, [](const auto& one) { return one.first; });
        std::vector<std::string> texts;
        texts.reserve(samples_.size());
        for (auto& [capturedAt, text] : samples_) {
            texts.push_back(std::move(text));
        }
        return texts;
    }

private:
    KnownSamples& known_;
    Instant now_;
    HistoryImport& result_;
    std::vector<std::pair<double, std::string>> samples_;
};

void readInput(int input, NewSamples& samples, HistoryImport& result) {
    const auto take = [&](const StoredHistorySample& sample) { samples.add(sample); };
    const HistoryFileScan scan = UsageHistoryReader::read(
        input, take, [&](const HistoryObjectForm& /*form*/) { ++result.refused; });
    result.form = scan.form;
    result.error = scan.error;
    if (!result.error && scan.form == HistoryFileScan::Form::foreign) {
        result.refused = 0;
        UsageHistoryReader::salvage(input, take, result.error);
    }
    if (result.error) {
        result.state = HistoryImport::State::unreadable;
    }
}

/// Whether the history can take samples.
bool mayWrite(const UsageHistoryFile::Status& status, HistoryImport& result) {
    using State = UsageHistoryFile::State;
    result.aside = status.state == State::repaired ? status.aside : std::filesystem::path();
    result.error = status.error;
    if (status.state == State::foreign) {
        result.state = HistoryImport::State::foreign;
    } else if (status.state != State::writable && status.state != State::repaired) {
        result.state = HistoryImport::State::notWritten;
    }
    return result.state == HistoryImport::State::done;
}

} // namespace

HistoryImport importHistory(const std::filesystem::path& file, int input, Instant now) {
    HistoryImport result;
    UsageHistoryFile history(file);
    const auto held = history.lock(result.error);
    if (!held) {
        result.state = HistoryImport::State::busy;
        return result;
    }
    KnownSamples known;
    const auto status = history.catchUp(
        &*held, {.restart = [&] { known = {}; },
                 .sample = [&](const StoredHistorySample& sample) { known.add(sample); }});
    if (!mayWrite(status, result)) {
        return result;
    }
    NewSamples samples(known, now, result);
    readInput(input, samples, result);
    const std::vector<std::string> texts = std::move(samples).texts();
    if (result.state == HistoryImport::State::done && !texts.empty()) {
        result.error = history.add(*held, texts);
        result.state = result.error ? HistoryImport::State::notWritten : HistoryImport::State::done;
    }
    if (result.state != HistoryImport::State::done) {
        result.taken = 0;
    }
    return result;
}

} // namespace vellmark
