#pragma once

#include "platform/DescriptorWatcher.h"

namespace vellmark {

/// Watches descriptors from Qt's event loop.
class QtDescriptorWatcher final : public DescriptorWatcher {
public:
    std::unique_ptr<DescriptorWatch> watch(int descriptor,
                                           std::function<void()> onReadable) override;
};

} // namespace vellmark
