#include "app/NoticeController.h"

#include "app/WindowActivation.h"
#include "platform/ContinuousClock.h"
#include "presentation/NoticeTexts.h"
#include "store/ActivityTexts.h"
#include "ui/GlyphPainter.h"

#include <QIcon>
#include <QImage>
#include <QPixmap>

#include <utility>

namespace vellmark {
namespace {

constexpr auto openAction = "open";
constexpr auto muteAction = "mute";
constexpr auto setupAction = "setup";
constexpr int iconSide = 64;
/// Who shows notices tells when he comes; who can be started to does not.
constexpr Seconds searchPause{30 * 60};
/// A service that has refused a notice is left alone for as long.
constexpr Seconds refusalPause{5 * 60};

std::filesystem::path memoryFile(const Machine& machine) {
    return machine.supportDirectory() / "notices.json";
}

NoticeMemory keptMemory(const Machine& machine, std::error_code& error) {
    return readNoticeMemory(memoryFile(machine), error);
}

NotificationIcon icon() {
    const QImage image = applicationImage(iconSide).convertToFormat(QImage::Format_ARGB32);
    NotificationIcon result{.side = iconSide, .pixels = {}};
    for (int y = 0; y < result.side; ++y) {
        for (int x = 0; x < result.side; ++x) {
            result.pixels.push_back(image.pixel(x, y));
        }
    }
    return result;
}

} // namespace

NoticeController::NoticeController(Sources sources)
    : sources_(std::move(sources)), notices_(keptMemory(sources_.machine, keepError_)) {
    if (!sources_.posts) {
        return;
    }
    center_ = makeNotificationCenter(sources_.loop, icon(), handlers());
    subscription_ =
        sources_.store.observe({.willChange = [this] { storeChanged(); }, .didChange = {}});
}

void NoticeController::end() {
    if (!center_ || std::exchange(hasEnded_, true)) {
        return;
    }
    subscription_.reset();
    if (!center_->outlivesProgram()) {
        for (const std::string& id : notices_.shownIDs()) {
            // What the service has not taken is the next run's to tell.
            if (center_->isUnderWay(id)) {
                notices_.notShown(id);
            }
            center_->close(id);
        }
    }
    (void)writeNoticeMemory(memoryFile(sources_.machine), notices_.memory());
}

NotificationCenter::Handlers NoticeController::handlers() {
    return {
        .availabilityChanged =
            [this] {
                look();
                sources_.update();
            },
        .chosen = [this](const std::string& id, const std::string& action) { choose(id, action); },
        .gone = [this](const std::string& id) { notices_.dismissed(id); },
        .failed =
            [this](const std::string& id) {
                notices_.notShown(id);
                lastRefusal_ = continuousSeconds();
                // The user may have forbidden them meanwhile.
                center_->lookForService(false);
            },

        .allGone = [this] { notices_.allGone(); },
        .activationToken = setActivationToken};
}

/// The change has not landed yet; several in one turn of the loop are looked at once.
void NoticeController::storeChanged() {
    if (std::exchange(isLookPosted_, true)) {
        return;
    }
    sources_.executor.post([this, alive = std::weak_ptr(isAlive_)] {
        if (!alive.expired()) {
            isLookPosted_ = false;
            look();
        }
    });
}

void NoticeController::look() {
    if (!center_ || hasEnded_) {
        return;
    }
    const Instant now = ReferenceClock::now();
    const NoticeSettings settings = NoticeSettings::of(sources_.preferences);
    const bool isQuiet = settings.isQuiet(now, TimeZone::system()) || sources_.isFirstRun();
    const bool isServed = center_->availability() == NotificationCenter::Availability::available;
    const Seconds continuous = continuousSeconds();
    const bool isRefused = lastRefusal_ && continuous - *lastRefusal_ < refusalPause;
    const NoticeMoment moment{
        .now = now, .continuous = continuous, .isSilent = isQuiet || !isServed || isRefused};
    const NoticeChanges changes = notices_.look(sources_.store.state(), settings, moment);
    for (const std::string& id : changes.closed) {
        center_->close(id);
    }
    if (changes.post) {
        show(*changes.post);
    }
    if (changes.isWaiting && !isQuiet && !isServed &&
        (!lastSearch_ || moment.continuous - *lastSearch_ > searchPause)) {
        lastSearch_ = moment.continuous;
        center_->lookForService(true);
    }
    keep();
}

void NoticeController::show(const NoticePost& post) {
    const Localization& words = sources_.words();
    NoticeText text = noticeText(post, sources_.store.state(), ReferenceClock::now(), words);
    NotificationContent content{
        .id = post.id, .title = std::move(text.title), .body = std::move(text.body), .actions = {}};
    if (const WayOut way = setupOf(post, sources_.store.state()); way != WayOut::none) {
        content.actions.push_back(
            {setupAction, words.text(way == WayOut::logIn ? "popover.failure.logIn"
                                                          : "popover.failure.install")});
    }
    content.actions.push_back({openAction, words.text("notice.action.open")});
    if (canMute(post)) {
        content.actions.push_back({muteAction, words.text("notice.action.mute")});
    }
    content.isQuiet = isQuiet(post);
    center_->post(content);
}

void NoticeController::choose(const std::string& id, const std::string& action) {
    if (action == muteAction) {
        notices_.mute(id);
        keep();
    } else if (const auto agent = notices_.agentOf(id)) {
        action == setupAction ? sources_.actions.setUpAgent(*agent)
                              : sources_.actions.openProvider(*agent);
    } else {
        sources_.actions.openWindow();
    }
    center_->close(id);
    notices_.dismissed(id);
}

void NoticeController::keep() {
    if (!notices_.takeIsChanged()) {
        return;
    }
    const std::error_code error =
        writeNoticeMemory(memoryFile(sources_.machine), notices_.memory());
    if (const bool isNew = error && !keepError_; std::exchange(keepError_, error), isNew) {
        sources_.store.logActivity(ActivityTexts::storageTrouble(
            {.error = error, .file = memoryFile(sources_.machine)}, sources_.words()));
    }
}

void NoticeController::systemDidWake() {
    notices_.systemDidWake();
}

NoticeDelivery NoticeController::delivery() const {
    if (!center_) {
        return NoticeDelivery::notHere;
    }
    switch (center_->availability()) {
    case NotificationCenter::Availability::available:
        return NoticeDelivery::works;
    case NotificationCenter::Availability::unserved:
        return NoticeDelivery::unserved;
    case NotificationCenter::Availability::forbidden:
        return NoticeDelivery::forbidden;
    case NotificationCenter::Availability::unasked:
        return NoticeDelivery::unasked;
    case NotificationCenter::Availability::unknown:
        break;
    }
    return NoticeDelivery::unknown;
}

void NoticeController::lookForService() {
    if (center_) {
        center_->lookForService(false);
    }
}

void NoticeController::allow() {
    if (center_ && !(delivery() == NoticeDelivery::forbidden && center_->openSystemSettings())) {
        center_->lookForService(true);
    }
}

} // namespace vellmark
