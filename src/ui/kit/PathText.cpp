#include "ui/kit/PathText.h"

#include <QLocale>

#include <cctype>
#include <cmath>
#include <numbers>

namespace vellmark::kit {

namespace {

/// Reads one path; keeps what the commands refer back to.
class PathReader {
public:
    explicit PathReader(std::string_view text) : text_(text) {}

    std::optional<QPainterPath> read() {
        skipBlanks();
        if (!text_.empty() && text_.front() != 'M' && text_.front() != 'm') {
            return std::nullopt;
        }
        while (!text_.empty()) {
            if (!readCommand()) {
                return std::nullopt;
            }
        }
        return path_;
    }

private:
    void skipBlanks() {
        while (!text_.empty() && (std::isspace(static_cast<unsigned char>(text_.front())) != 0 ||
                                  text_.front() == ',')) {
            text_.remove_prefix(1);
        }
    }

    /// The length of the number at the start: "-.5" and "1.3.2" (two numbers) are usual.
    std::size_t numberLength() const {
        std::size_t length = 0;
        const auto digits = [&] {
            const std::size_t before = length;
            while (length < text_.size() &&
                   std::isdigit(static_cast<unsigned char>(text_[length])) != 0) {
                ++length;
            }
            return length - before;
        };
        if (length < text_.size() && (text_[length] == '-' || text_[length] == '+')) {
            ++length;
        }
        std::size_t count = digits();
        if (length < text_.size() && text_[length] == '.') {
            ++length;
            count += digits();
        }
        return count > 0 ? length : 0;
    }

    std::optional<double> number() {
        skipBlanks();
        const std::size_t length = numberLength();
        if (length == 0) {
            return std::nullopt;
        }
        const auto size = static_cast<qsizetype>(length);
        bool valid = false;
        const double value = QLocale::c().toDouble(QString::fromLatin1(text_.data(), size), &valid);
        text_.remove_prefix(length);
        skipBlanks();
        return valid ? std::optional(value) : std::nullopt;
    }

    /// A flag of an arc: one character, which nothing need separate from the next.
    std::optional<bool> flag() {
        skipBlanks();
        if (text_.empty() || (text_.front() != '0' && text_.front() != '1')) {
            return std::nullopt;
        }
        const bool value = text_.front() == '1';
        text_.remove_prefix(1);
        skipBlanks();
        return value;
    }

    std::optional<QPointF> point() {
        const auto x = number();
        const auto y = x ? number() : std::nullopt;
        if (!y) {
            return std::nullopt;
        }
        return relative_ ? position_ + QPointF(*x, *y) : QPointF(*x, *y);
    }

    bool readCommand() {
        const char letter = text_.front();
        if (std::isalpha(static_cast<unsigned char>(letter)) == 0) {
            return false;
        }
        text_.remove_prefix(1);
        skipBlanks();
        relative_ = std::islower(static_cast<unsigned char>(letter)) != 0;
        char command = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
        do {
            if (!readSegment(command)) {
                return false;
            }
            previous_ = command;
            if (command == 'M') {
                command = 'L';
            }
            skipBlanks();
        } while (command != 'Z' && numberLength() > 0);
        return true;
    }

    bool readSegment(char command) {
        switch (command) {
        case 'M':
        case 'L':
            return readPoint(command == 'M');
        case 'H':
        case 'V':
            return readStraight(command == 'H');
        case 'C':
        case 'S':
            return readCubic(command == 'S');
        case 'Q':
        case 'T':
            return readQuadratic(command == 'T');
        case 'A':
            return readArc();
        case 'Z':
            path_.closeSubpath();
            position_ = start_;
            return true;
        default:
            return false;
        }
    }

    bool readPoint(bool isMove) {
        const auto to = point();
        if (!to) {
            return false;
        }
        position_ = *to;
        if (isMove) {
            start_ = *to;
            path_.moveTo(*to);
        } else {
            path_.lineTo(*to);
        }
        return true;
    }

    bool readStraight(bool isHorizontal) {
        const auto value = number();
        if (!value) {
            return false;
        }
        double& coordinate = isHorizontal ? position_.rx() : position_.ry();
        coordinate = relative_ ? coordinate + *value : *value;
        path_.lineTo(position_);
        return true;
    }

    /// The control point opposite of the last one, for the commands that continue a curve.
    QPointF mirroredControl(char family, char continuation) const {
        const bool continues = previous_ == family || previous_ == continuation;
        return continues ? 2 * position_ - control_ : position_;
    }

    bool readCubic(bool isContinued) {
        const auto first = isContinued ? std::optional(mirroredControl('C', 'S')) : point();
        const auto second = first ? point() : std::nullopt;
        const auto to = second ? point() : std::nullopt;
        if (!to) {
            return false;
        }
        path_.cubicTo(*first, *second, *to);
        control_ = *second;
        position_ = *to;
        return true;
    }

    bool readQuadratic(bool isContinued) {
        const auto control = isContinued ? std::optional(mirroredControl('Q', 'T')) : point();
        const auto to = control ? point() : std::nullopt;
        if (!to) {
            return false;
        }
        path_.quadTo(*control, *to);
        control_ = *control;
        position_ = *to;
        return true;
    }

    bool readArc() {
        const auto radiusX = number();
        const auto radiusY = radiusX ? number() : std::nullopt;
        const auto rotation = radiusY ? number() : std::nullopt;
        const auto isLarge = rotation ? flag() : std::nullopt;
        const auto isClockwise = isLarge ? flag() : std::nullopt;
        const auto to = isClockwise ? point() : std::nullopt;
        if (!to) {
            return false;
        }
        addArc(std::abs(*radiusX), std::abs(*radiusY), *rotation, *isLarge, *isClockwise, *to);
        position_ = *to;
        return true;
    }

    /// From end points to centre and angles: SVG 1.1, appendix F.6.5.
    void addArc(double radiusX, double radiusY, double degrees, bool isLarge, bool isClockwise,
                QPointF to) {
        if (radiusX == 0 || radiusY == 0 || to == position_) {
            path_.lineTo(to);
            return;
        }
        const double phi = degrees * std::numbers::pi / 180;
        const QPointF half = (position_ - to) / 2;
        const QPointF turned(std::cos(phi) * half.x() + std::sin(phi) * half.y(),
                             -std::sin(phi) * half.x() + std::cos(phi) * half.y());
        const double reach = turned.x() * turned.x() / (radiusX * radiusX) +
                             turned.y() * turned.y() / (radiusY * radiusY);
        const double grow = reach > 1 ? std::sqrt(reach) : 1;
        radiusX *= grow;
        radiusY *= grow;
        const double unit = std::min(reach, 1.0);
        const double factor = (isLarge == isClockwise ? -1 : 1) * std::sqrt((1 - unit) / unit);
        const QPointF center(factor * radiusX * turned.y() / radiusY,
                             -factor * radiusY * turned.x() / radiusX);
        const double from =
            std::atan2((turned.y() - center.y()) / radiusY, (turned.x() - center.x()) / radiusX);
        double sweep =
            std::atan2((-turned.y() - center.y()) / radiusY, (-turned.x() - center.x()) / radiusX) -
            from;
        if (isClockwise && sweep < 0) {
            sweep += 2 * std::numbers::pi;
        } else if (!isClockwise && sweep > 0) {
            sweep -= 2 * std::numbers::pi;
        }
        const QPointF middle =
            (position_ + to) / 2 + QPointF(std::cos(phi) * center.x() - std::sin(phi) * center.y(),
                                           std::sin(phi) * center.x() + std::cos(phi) * center.y());
        addArcPieces({radiusX, radiusY}, phi, from, sweep, middle);
    }

    /// One cubic for at most a quarter turn.
    void addArcPieces(QPointF radii, double phi, double from, double sweep, QPointF center) {
        const int pieces = static_cast<int>(std::ceil(std::abs(sweep) / (std::numbers::pi / 2)));
        const double step = sweep / pieces;
        const double handle = 4.0 / 3.0 * std::tan(step / 4);
        const auto place = [&](double x, double y) {
            return center + QPointF(std::cos(phi) * radii.x() * x - std::sin(phi) * radii.y() * y,
                                    std::sin(phi) * radii.x() * x + std::cos(phi) * radii.y() * y);
        };
        for (int piece = 0; piece < pieces; ++piece) {
            const double one = from + piece * step;
            const double two = one + step;
            path_.cubicTo(place(std::cos(one) - handle * std::sin(one),
                                std::sin(one) + handle * std::cos(one)),
                          place(std::cos(two) + handle * std::sin(two),
                                std::sin(two) - handle * std::cos(two)),
                          place(std::cos(two), std::sin(two)));
        }
    }

    std::string_view text_;
    QPainterPath path_;
    QPointF position_;
    QPointF start_;
    QPointF control_;
    char previous_ = 0;
    bool relative_ = false;
};

} // namespace

std::optional<QPainterPath> pathFromText(std::string_view text) {
    return PathReader(text).read();
}

} // namespace vellmark::kit
