#pragma once

#include "ui/kit/Theme.h"

#include <QLabel>

#include <string>

namespace vellmark::kit {

/// What a state is called and the mark that stands before the word: a dot, or an icon where there
/// is no health to tell (the clock of an old reading).
struct HealthLook {
    QString words;
    ColorRole dot = ColorRole::none;
    std::string iconName;
    bool operator==(const HealthLook&) const = default;
};

/// A mark and its word in one line, 14 high.
class HealthDot : public QLabel {
public:
    explicit HealthDot(QWidget* parent = nullptr);
    void setLook(const HealthLook& look);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    HealthLook look_;
};

/// The same on a ground of its own, 20 high; without a dot where it tells no health.
class Pill : public QLabel {
public:
    explicit Pill(QWidget* parent = nullptr);
    void setLook(const HealthLook& look);
    void setWords(const QString& words);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    HealthLook look_;
    bool hasMark_ = false;
};

} // namespace vellmark::kit
