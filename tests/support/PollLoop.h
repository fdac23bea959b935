#pragma once

#include "platform/DescriptorWatcher.h"
#include "support/ProcessCensus.h"

#include <chrono>
#include <functional>
#include <map>
#include <poll.h>
#include <utility>
#include <vector>

namespace vellmark::tests {

/// An event loop of poll(2) alone, turned by the test.
class PollLoop final : public DescriptorWatcher {
public:
    std::unique_ptr<DescriptorWatch> watch(int descriptor,
                                           std::function<void()> onReadable) override {
        const int number = ++lastNumber_;
        watches_[number] = {descriptor, std::move(onReadable)};
        return std::make_unique<Watch>(*this, number);
    }

    /// Turns until `condition` holds; false when it does not within 20 s.
    [[nodiscard]] bool turnUntil(const std::function<bool()>& condition) {
        return becomesTrue([&] {
            turn(std::chrono::milliseconds(10));
            return condition();
        });
    }

    /// Waits for at most `limit` and answers what has become readable.
    void turn(std::chrono::milliseconds limit) {
        std::vector<pollfd> descriptors;
        std::vector<int> numbers;
        for (const auto& [number, watch] : watches_) {
            descriptors.push_back({watch.first, POLLIN, 0});
            numbers.push_back(number);
        }
        ::poll(descriptors.data(), descriptors.size(), static_cast<int>(limit.count()));
        for (std::size_t index = 0; index < numbers.size(); ++index) {
            const auto found = watches_.find(numbers[index]);
            if (descriptors[index].revents == 0 || found == watches_.end()) {
                continue;
            }
            const auto answer = found->second.second;
            answer();
        }
    }

private:
    class Watch final : public DescriptorWatch {
    public:
        Watch(PollLoop& loop, int number) : loop_(loop), number_(number) {}
        ~Watch() override { loop_.watches_.erase(number_); }

    private:
        PollLoop& loop_;
        int number_;
    };

    std::map<int, std::pair<int, std::function<void()>>> watches_;
    int lastNumber_ = 0;
};

} // namespace vellmark::tests
