#include "app/StatusItem.h"

#include "app/WindowActivation.h"
#include "app/linux/EdgeStrip.h"
#include "app/linux/TrayWatch.h"
#include "platform/linux/StatusNotifierItem.h"
#include "ui/GlyphPainter.h"

#include <QAction>
#include <QCursor>
#include <QGuiApplication>
#include <QIcon>
#include <QMenu>
#include <QScreen>
#include <QSystemTrayIcon>
#include <QTimer>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace vellmark {
namespace {

/// The sides that panels ask for, at scale 1 and 2.
constexpr std::array iconSides{16, 22, 24, 32, 44, 48, 64};
/// After this long without an answer about panels there is none.
constexpr int hostAnswerLimitMs = 1000;
constexpr int trayLookDelayMs = 500;

NotifierPixmap notifierPixmap(const QImage& image) {
    NotifierPixmap pixmap{.side = image.width()};
    pixmap.pixels.reserve(static_cast<std::size_t>(image.width() * image.height()));
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        pixmap.pixels.insert(pixmap.pixels.end(), line, line + image.width());
    }
    return pixmap;
}

QRect pointerOr(int x, int y) {
    const QPoint place = x == 0 && y == 0 ? QCursor::pos() : QPoint(x, y);
    return {place, QSize(1, 1)};
}

/// A status notifier where a panel hosts them, else a tray icon, else the strip.
class LinuxStatusItem final : public QObject, public StatusItem {
public:
    LinuxStatusItem(DescriptorWatcher& loop, Preferences& preferences, Events events)
        : preferences_(preferences), events_(std::move(events)) {
        connect(&menu_, &QMenu::aboutToShow, this, [this] { fillMenu(); });
        notifier_ = std::make_unique<StatusNotifierItem>(
            loop, "vellmark", "Vellmark",
            StatusNotifierItem::Handlers{
                .activate = [this](int x, int y) { events_.toggle(pointerOr(x, y)); },
                .menuItemChosen = [this](const std::string& action) { events_.menuAction(action); },
                .hostChanged = [this](bool isShown) { hostChanged(isShown); },
                .activationToken = setActivationToken});
        if (notifier_->isOnBus()) {
            QTimer::singleShot(hostAnswerLimitMs, this, [this] {
                if (!isHosted_) {
                    hostChanged(false);
                }
            });
        } else {
            hostChanged(false);
        }
    }

    void show(const StatusItemContent& content) override {
        const bool looksDifferent =
            !shown_ || content.glyph != shown_->glyph || content.color != shown_->color;
        const bool saysDifferent = !shown_ || content.toolTip != shown_->toolTip;
        shown_ = content;
        if (looksDifferent) {
            drawIcon();
        }
        if (saysDifferent) {
            writeToolTip();
        }
        notifier_->setLabel(content.figure);
        if (strip_) {
            strip_->setContent(content);
        }
    }

    void setInk(StatusInk ink) override {
        if (std::exchange(ink_, ink) != ink && shown_) {
            drawIcon();
        }
    }

    void setMenu(std::vector<StatusMenuItem> items) override {
        if (items == items_) {
            return;
        }
        items_ = std::move(items);
        notifier_->setMenu(forPanel(items_));
        // Not under the pointer.
        if (!menu_.isVisible()) {
            fillMenu();
        }
    }

    void setPanelScheme(ColorScheme scheme) override {
        const bool wasDark = isPanelDark();
        scheme_ = scheme;
        if (shown_ && isPanelDark() != wasDark) {
            drawIcon();
        }
        if (strip_) {
            strip_->update();
        }
    }

    void setPopoverOpen(bool isOpen) override {
        isPopoverOpen_ = isOpen;
        if (shown_) {
            writeToolTip();
        }
    }

    QRect anchor() const override {
        if (strip_ && strip_->isVisible()) {
            return strip_->geometry();
        }
        return tray_ ? tray_->geometry() : QRect();
    }

private:
    static std::vector<NotifierMenuItem> forPanel(const std::vector<StatusMenuItem>& items) {
        std::vector<NotifierMenuItem> lines;
        for (const StatusMenuItem& item : items) {
            lines.push_back({item.title, item.action, true, forPanel(item.items)});
        }
        return lines;
    }

    void fillMenu() {
        menu_.clear();
        submenus_.clear();
        fill(menu_, items_);
    }

    void fill(QMenu& menu, const std::vector<StatusMenuItem>& items) {
        for (const StatusMenuItem& item : items) {
            // An ampersand would mark the letter of a shortcut.
            const QString title = QString::fromStdString(item.title).replace('&', "&&");
            if (item.isSeparator()) {
                menu.addSeparator();
            } else if (!item.items.empty()) {
                submenus_.push_back(std::make_unique<QMenu>(title));
                menu.addMenu(submenus_.back().get());
                fill(*submenus_.back(), item.items);
            } else {
                connect(menu.addAction(title), &QAction::triggered, this,
                        [this, action = item.action] { events_.menuAction(action); });
            }
        }
    }

    /// An old-style tray draws its ground where the icon lets it through.
    void lookAtTray() {
        if (tray_ && !isTrayAvailable()) {
            // It went while the icon was on its way there.
            trayMayHaveChanged();
            return;
        }
        const QRect place = tray_ ? tray_->geometry() : QRect();
        QScreen* screen = QGuiApplication::screenAt(place.center());
        if (!place.isValid() || screen == nullptr) {
            return;
        }
        const QPoint corner = place.topLeft() - screen->geometry().topLeft();
        const QImage ground = screen->grabWindow(0, corner.x(), corner.y(), 1, 1).toImage();
        if (ground.isNull()) {
            return;
        }
        isTrayDark_ = ground.pixelColor(0, 0).lightness() < 128;
        drawIcon();
    }

    /// A panel cannot be asked for its colour. These desktops' panels follow the colour scheme; the
    /// others' are dark unless somebody changed them.
    bool isPanelDark() const {
        if (tray_ && isTrayDark_) {
            return *isTrayDark_;
        }
        const QByteArray desktop = qgetenv("XDG_CURRENT_DESKTOP").toLower();
        const bool followsScheme =
            std::ranges::any_of(std::array{"kde", "mate", "lxqt", "lxde", "cinnamon"},
                                [&](const char* name) { return desktop.contains(name); });
        return !followsScheme || scheme_ == ColorScheme::dark;
    }

    /// What the user says of the ground counts more than what is known of it.
    bool isGroundDark() const {
        return ink_ == StatusInk::automatic ? isPanelDark() : ink_ == StatusInk::light;
    }

    QColor ink() const { return isGroundDark() ? Qt::white : Qt::black; }

    void drawIcon() {
        const QColor dot = statusQColor(shown_->color, isGroundDark());
        if (isHosted_ != false) {
            std::vector<NotifierPixmap> pixmaps;
            for (const int side : iconSides) {
                pixmaps.push_back(notifierPixmap(glyphImage(shown_->glyph, side, ink(), dot)));
            }
            notifier_->setIcon(std::move(pixmaps));
        }
        if (tray_) {
            QIcon icon;
            for (const int side : iconSides) {
                icon.addPixmap(QPixmap::fromImage(glyphImage(shown_->glyph, side, ink(), dot)));
            }
            tray_->setIcon(icon);
        }
    }

    /// Panels show it beside the item, where the popover opens.
    void writeToolTip() {
        const std::string text = isPopoverOpen_ ? std::string() : shown_->toolTip;
        notifier_->setToolTip(text);
        if (tray_) {
            tray_->setToolTip(QString::fromStdString(text));
        }
    }

    void hostChanged(bool isHosted) {
        if (isHosted_ == isHosted) {
            return;
        }
        isHosted_ = isHosted;
        if (isHosted) {
            tray_.reset();
            strip_.reset();
        } else {
            useFallback();
        }
        if (shown_) {
            drawIcon();
            writeToolTip();
        }
    }

    void useFallback() {
        const bool isTrayThere = isTrayAvailable();
        if (isTrayThere && !tray_) {
            strip_.reset();
            makeTray();
        } else if (!isTrayThere && !strip_) {
            tray_.reset();
            isTrayDark_.reset();
            makeStrip();
        }
    }

    /// A tray may come and go at any time.
    void trayMayHaveChanged() {
        if (isHosted_ == false) {
            useFallback();
        }
    }

    void makeTray() {
        tray_ = std::make_unique<QSystemTrayIcon>();
        tray_->setContextMenu(&menu_);
        connect(tray_.get(), &QSystemTrayIcon::activated, this,
                [this](QSystemTrayIcon::ActivationReason reason) {
                    if (reason == QSystemTrayIcon::Trigger) {
                        events_.toggle(tray_->geometry().isValid() ? tray_->geometry()
                                                                   : pointerOr(0, 0));
                    }
                });
        if (shown_) {
            drawIcon();
            writeToolTip();
        }
        tray_->show();
        // Once the tray has put the icon in its place.
        QTimer::singleShot(trayLookDelayMs, this, [this] { lookAtTray(); });
    }

    void makeStrip() {
        strip_ = std::make_unique<EdgeStrip>(
            preferences_,
            EdgeStrip::Events{.toggle = [this](const QRect& anchor) { events_.toggle(anchor); },
                              .menu = [this](const QPoint& at) { menu_.popup(at); }});
        if (shown_) {
            strip_->setContent(*shown_);
        }
        strip_->show();
    }

    Preferences& preferences_;
    Events events_;
    std::optional<StatusItemContent> shown_;
    bool isPopoverOpen_ = false;
    ColorScheme scheme_ = ColorScheme::light;
    StatusInk ink_ = StatusInk::automatic;
    /// Absent until the bus has answered.
    std::optional<bool> isHosted_;
    /// As its ground shows; absent before the first look.
    std::optional<bool> isTrayDark_;
    std::vector<StatusMenuItem> items_;
    QMenu menu_;
    std::vector<std::unique_ptr<QMenu>> submenus_; ///< gone before the menu that shows them
    std::unique_ptr<StatusNotifierItem> notifier_;
    std::unique_ptr<QSystemTrayIcon> tray_;
    std::unique_ptr<EdgeStrip> strip_;
    TrayWatch trayWatch_{[this] { trayMayHaveChanged(); }};
};

} // namespace

std::unique_ptr<StatusItem> makeStatusItem(DescriptorWatcher& loop, Preferences& preferences,
                                           StatusItem::Events events) {
    return std::make_unique<LinuxStatusItem>(loop, preferences, std::move(events));
}

} // namespace vellmark
