#include "ForeignReaders.h"
#include "Requirement.h"
#include "platform/linux/ShownNotifications.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <string>

namespace vellmark {
namespace {

/// A program and a notification service that answers whatever the bytes say. Keeps a record of its
/// own of what each of the two believes, and holds `ShownNotifications` to it.
class NotificationExchange {
public:
    void post(std::size_t notice) {
        Belief& belief = beliefs_[notice];
        belief.isWanted = true;
        ++belief.version;
        take(shown_.post(
            {.id = names[notice], .title = std::to_string(belief.version), .body = {}}));
    }

    void close(std::size_t notice) {
        Belief& belief = beliefs_[notice];
        const auto number = shown_.close(names[notice]);
        // What is under way is closed when it has a number.
        require(!number || (belief.isWanted && belief.ticket == 0));
        require(number.value_or(0) == (belief.ticket == 0 ? belief.number : 0));
        if (belief.ticket == 0) {
            belief.number = 0;
        }
        belief.isWanted = false;
    }

    void answer(std::uint64_t ticket, std::optional<std::uint32_t> number) {
        const auto asked = std::ranges::find(beliefs_, ticket, &Belief::ticket);
        const auto outcome = shown_.answered(ticket, number);
        if (ticket == 0 || asked == beliefs_.end()) {
            require(!outcome.send && !outcome.close && !outcome.gone && !outcome.failed);
            return;
        }
        const std::size_t notice = static_cast<std::size_t>(asked - beliefs_.begin());
        require(outcome.failed.has_value() == !number);
        const std::uint32_t former = asked->number;
        asked->ticket = 0;
        if (!number) {
            require(*outcome.failed == names[notice] && !outcome.send && !outcome.gone);
            require(outcome.close.value_or(0) == former);
            forget(notice);
            return;
        }
        // The number that another notice had now stands for this one.
        if (const auto other = holder(*number); other && *other != notice) {
            require(outcome.gone.has_value() == (beliefs_[*other].ticket == 0));
            beliefs_[*other].number = 0;
            if (outcome.gone) {
                require(*outcome.gone == names[*other]);
                require(beliefs_[*other].isWanted);
                forget(*other);
            }
        } else {
            require(!outcome.gone);
        }
        asked->number = *number;
        if (!asked->isWanted) {
            require(!outcome.send && outcome.close.value_or(0) == *number);
            asked->number = 0;
            return;
        }
        require(!outcome.close && outcome.send.has_value() == (asked->sent != asked->version));
        take(outcome.send);
    }

    void closed(std::uint32_t number) {
        const auto notice = holder(number);
        const auto gone = shown_.closed(number);
        require(gone.has_value() == (notice && beliefs_[*notice].ticket == 0));
        if (notice) {
            beliefs_[*notice].number = 0;
        }
        if (gone) {
            require(*gone == names[*notice] && beliefs_[*notice].isWanted);
            forget(*notice);
        }
    }

    void choose(std::uint32_t number) const {
        const auto notice = holder(number);
        const auto chosen = shown_.idOf(number);
        require(chosen.has_value() == notice.has_value());
        require(!chosen || *chosen == names[*notice]);
    }

    void lose() {
        const std::vector<std::string> failed = shown_.lost();
        for (std::size_t notice = 0; notice < names.size(); ++notice) {
            const std::ptrdiff_t underWay = beliefs_[notice].ticket != 0 ? 1 : 0;
            require(std::ranges::count(failed, names[notice]) == underWay);
            forget(notice);
        }
    }

    /// A sending by its age: 0 is the last. 0 where there was none.
    std::uint64_t ticket(std::size_t age) const {
        return age < tickets_.size() ? tickets_[tickets_.size() - 1 - age] : 0;
    }

    /// Once the service has answered everything, it shows the last of each notice that is wanted
    /// and nothing else.
    void settle() {
        std::uint32_t number = 1000;
        for (std::size_t notice = 0; notice < names.size(); ++notice) {
            Belief& belief = beliefs_[notice];
            for (int answers = 0; belief.ticket != 0; ++answers) {
                require(answers < 2);
                answer(belief.ticket, ++number);
            }
            require(!belief.isWanted || belief.sent == belief.version);
            require(belief.isWanted || belief.number == 0);
            require(belief.number == 0 || shown_.idOf(belief.number) == names[notice]);
        }
    }

    static constexpr std::size_t noticeCount = 4;

private:
    struct Belief {
        /// Posted, and neither closed by the program nor told to be gone since.
        bool isWanted = false;
        /// The last that was posted, and the last that was sent.
        int version = 0;
        int sent = 0;
        std::uint64_t ticket = 0;
        std::uint32_t number = 0;
    };

    void take(const std::optional<ShownNotifications::Sending>& sending) {
        if (!sending) {
            return;
        }
        const auto named = std::ranges::find(names, sending->content.id);
        require(named != names.end());
        Belief& belief = beliefs_[static_cast<std::size_t>(named - names.begin())];
        // Never two of one notice, always the newest, and in the place of the one before.
        require(belief.ticket == 0 && belief.isWanted);
        require(sending->content.title == std::to_string(belief.version));
        require(sending->replaces == belief.number);
        require(sending->ticket > lastTicket_);
        lastTicket_ = belief.ticket = sending->ticket;
        belief.sent = belief.version;
        tickets_.push_back(sending->ticket);
        if (tickets_.size() > 16) {
            tickets_.pop_front();
        }
    }

    /// The program has been told that it is gone, or that it could not be shown.
    void forget(std::size_t notice) { beliefs_[notice] = {.version = beliefs_[notice].version}; }

    std::optional<std::size_t> holder(std::uint32_t number) const {
        const auto found = std::ranges::find(beliefs_, number, &Belief::number);
        return number == 0 || found == beliefs_.end()
                   ? std::nullopt
                   : std::optional(static_cast<std::size_t>(found - beliefs_.begin()));
    }

    static inline const std::array<std::string, noticeCount> names = {"a", "b", "c", "d"};

    ShownNotifications shown_;
    std::array<Belief, noticeCount> beliefs_;
    std::deque<std::uint64_t> tickets_;
    std::uint64_t lastTicket_ = 0;
};

/// Two characters an event: what happens, and to which notice, sending or number. An answer has a
/// third, the number.
void readDesktopNotifications(std::string_view bytes) {
    NotificationExchange exchange;
    std::size_t at = 0;
    const auto next = [&]() -> std::uint8_t {
        return at < bytes.size() ? static_cast<std::uint8_t>(bytes[at++]) : 0;
    };
    while (at < bytes.size()) {
        const char event = static_cast<char>(next());
        // "0" is the first, so that the inputs can be read.
        const auto which = static_cast<std::uint8_t>(next() - '0');
        switch (event) {
        case 'p':
            exchange.post(which % NotificationExchange::noticeCount);
            break;
        case 'c':
            exchange.close(which % NotificationExchange::noticeCount);
            break;
        case 'n':
            exchange.answer(exchange.ticket(which), static_cast<std::uint8_t>(next() - '0'));
            break;
        case 'r':
            exchange.answer(exchange.ticket(which), std::nullopt);
            break;
        case 'g':
            exchange.closed(which);
            break;
        case 'a':
            exchange.choose(which);
            break;
        case 'l':
            exchange.lose();
            break;
        default:
            break;
        }
    }
    exchange.settle();
}

} // namespace

std::vector<ForeignReader> systemReaders() {
    return {{"desktop-notifications", "notifications", readDesktopNotifications}};
}

} // namespace vellmark
