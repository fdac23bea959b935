#include "process/ChildOutputs.h"

#include <algorithm>
#include <utility>

namespace vellmark {
namespace {

int pollTimeout(ChildOutputs::Clock::time_point deadline) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - ChildOutputs::Clock::now());
    return std::max(static_cast<int>(left.count()), 0);
}

} // namespace

ChildOutputs::ChildOutputs(const ChildConfiguration& configuration) {
    output_ = prepare(configuration.standardOutput, streams_.output);
    if (configuration.mergesStandardError) {
        streams_.error = streams_.output;
    } else {
        error_ = prepare(configuration.standardError, streams_.error);
    }
}

std::optional<OutputCapture> ChildOutputs::prepare(const ChildOutput& wanted, int& stream) {
    std::optional<OutputCapture> capture;
    switch (wanted.kind) {
    case ChildOutput::Kind::nullDevice:
        return std::nullopt;
    case ChildOutput::Kind::descriptor:
        stream = wanted.descriptor;
        return std::nullopt;
    case ChildOutput::Kind::capture:
        capture.emplace(wanted.limit, OutputCapture::Part::beginning);
        break;
    case ChildOutput::Kind::recording:
        capture.emplace(OutputCapture::recording(wanted.descriptor, wanted.limit));
        break;
    }
    stream = capture->childEnd();
    return capture;
}

void ChildOutputs::closeChildEnds() {
    for (auto* const capture : {&output_, &error_}) {
        if (*capture) {
            (*capture)->closeChildEnd();
        }
    }
}

bool ChildOutputs::drainUntil(int end, std::optional<Clock::time_point> deadline) {
    do {
        auto events = awaited(end);
        if (::poll(events.data(), events.size(), deadline ? pollTimeout(*deadline) : -1) < 0) {
            continue;
        }
        drainReady(events);
        if (events[2].revents != 0) {
            return true;
        }
    } while (!deadline || Clock::now() < *deadline);
    return false;
}

void ChildOutputs::drainUntil(Clock::time_point deadline) {
    for (bool isFirst = true; !haveEnded() && (isFirst || Clock::now() < deadline);
         isFirst = false) {
        auto events = awaited(-1);
        if (::poll(events.data(), events.size(), pollTimeout(deadline)) >= 0) {
            drainReady(events);
        }
    }
}

bool ChildOutputs::haveEnded() const {
    return (!output_ || output_->hasEnded()) && (!error_ || error_->hasEnded());
}

ChildOutputs::Events ChildOutputs::awaited(int end) const {
    const auto descriptor = [](const std::optional<OutputCapture>& capture) {
        return capture ? capture->descriptor() : -1;
    };
    return {pollfd{descriptor(output_), POLLIN, 0}, pollfd{descriptor(error_), POLLIN, 0},
            pollfd{end, POLLIN, 0}};
}

void ChildOutputs::drainReady(const Events& events) {
    if (events[0].revents != 0) {
        output_->drain();
    }
    if (events[1].revents != 0) {
        error_->drain();
    }
    const bool wasCapped = std::exchange(isCapped_, (output_ && output_->hasOutgrownFile()) ||
                                                        (error_ && error_->hasOutgrownFile()));
    if (isCapped_ && !wasCapped && onCapped) {
        onCapped();
    }
}

} // namespace vellmark
