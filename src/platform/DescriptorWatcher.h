#pragma once

#include <functional>
#include <memory>

namespace vellmark {

/// Ends the watch when destroyed.
class DescriptorWatch {
public:
    virtual ~DescriptorWatch() = default;
};

/// The front end's event loop, as far as platform answers need it: calls back on the main thread
/// when a descriptor has something to read. Main thread.
class DescriptorWatcher {
public:
    virtual ~DescriptorWatcher() = default;
    virtual std::unique_ptr<DescriptorWatch> watch(int descriptor,
                                                   std::function<void()> onReadable) = 0;
};

} // namespace vellmark
