#include "store/OrderedHistory.h"

#include <limits>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>

namespace vellmark {
namespace {

/// What is held in memory at most.
constexpr std::size_t mostSamples = 20'000;
constexpr std::size_t mostHeldBytes = std::size_t{8} << 20;

struct HeldSample {
    std::string provider;
    std::string windowID;
    std::string text;
    StoredHistorySample sample;

    /// Views onto what this one holds itself.
    StoredHistorySample view() const {
        StoredHistorySample own = sample;
        own.provider = provider;
        own.windowID = windowID;
        own.text = text;
        return own;
    }
};

class Before {
public:
    explicit Before(HistoryOrder order) : order_(order) {}
    using is_transparent = void;

    bool operator()(const HeldSample& first, const HeldSample& second) const {
        return (*this)(first.view(), second.view());
    }
    bool operator()(const StoredHistorySample& first, const HeldSample& second) const {
        return (*this)(first, second.view());
    }
    bool operator()(const HeldSample& first, const StoredHistorySample& second) const {
        return (*this)(first.view(), second);
    }
    bool operator()(const StoredHistorySample& first, const StoredHistorySample& second) const {
        const auto moment = std::tie(first.capturedAt, first.offset);
        const auto other = std::tie(second.capturedAt, second.offset);
        if (order_ == HistoryOrder::time) {
            return moment < other;
        }
        const auto window = std::tie(first.provider, first.windowID);
        const auto otherWindow = std::tie(second.provider, second.windowID);
        return window != otherWindow ? window < otherWindow : moment < other;
    }

private:
    HistoryOrder order_;
};

bool isInOrderOfTime(const HistorySource& source) {
    bool isOrdered = true;
    double last = -std::numeric_limits<double>::infinity();
    source([&](const StoredHistorySample& sample) {
        isOrdered = isOrdered && sample.capturedAt >= last;
        last = sample.capturedAt;
    });
    return isOrdered;
}

/// The first samples behind `last`, as many as there is room for; `isAll` when that is the rest.
std::multiset<HeldSample, Before> nextSamples(const HistorySource& source, Before before,
                                              const std::optional<HeldSample>& last, bool& isAll) {
    std::multiset<HeldSample, Before> held(before);
    std::size_t bytes = 0;
    isAll = true;
    source([&](const StoredHistorySample& sample) {
        if ((last && !before(*last, sample)) ||
            (!isAll && !held.empty() && !before(sample, *held.rbegin()))) {
            return;
        }
        held.insert({std::string(sample.provider), std::string(sample.windowID),
                     std::string(sample.text), sample});
        bytes += sample.text.size();
        while (held.size() > mostSamples || (bytes > mostHeldBytes && held.size() > 1)) {
            bytes -= held.rbegin()->text.size();
            held.erase(std::prev(held.end()));
            isAll = false;
        }
    });
    return held;
}

} // namespace

void visitInOrder(const HistorySource& source, HistoryOrder order,
                  const UsageHistoryReader::Visitor& visit) {
    if (order == HistoryOrder::time && isInOrderOfTime(source)) {
        source(visit);
        return;
    }
    const Before before(order);
    std::optional<HeldSample> last;
    for (bool isAll = false; !isAll;) {
        const auto samples = nextSamples(source, before, last, isAll);
        for (const HeldSample& held : samples) {
            visit(held.view());
        }
        if (samples.empty()) {
            return;
        }
        last = *samples.rbegin();
    }
}

} // namespace vellmark
