#include "app/QtDescriptorWatcher.h"

#include <QSocketNotifier>

namespace vellmark {
namespace {

class NotifierWatch final : public DescriptorWatch {
public:
    NotifierWatch(int descriptor, std::function<void()> onReadable)
        : notifier_(new QSocketNotifier(descriptor, QSocketNotifier::Read)) {
        QObject::connect(notifier_, &QSocketNotifier::activated, notifier_,
                         [onReadable = std::move(onReadable)] { onReadable(); });
    }
    // The watch may be ended by its own callback.
    ~NotifierWatch() override {
        notifier_->setEnabled(false);
        notifier_->deleteLater();
    }

private:
    QSocketNotifier* notifier_;
};

} // namespace

std::unique_ptr<DescriptorWatch> QtDescriptorWatcher::watch(int descriptor,
                                                            std::function<void()> onReadable) {
    return std::make_unique<NotifierWatch>(descriptor, std::move(onReadable));
}

} // namespace vellmark
