#pragma once

#include "ui/kit/Interaction.h"
#include "ui/kit/LogoTile.h"
#include "ui/kit/Spoken.h"

#include <QAbstractButton>

#include <optional>
#include <string>

namespace vellmark::kit {

struct SidebarEntryLook {
    QString words;
    /// An icon, or a logo with its badge.
    std::string iconName;
    std::optional<LogoLook> logo;
    std::optional<ColorRole> badge;
    /// At the end of the row, such as the least that is left.
    QString detail;
    bool operator==(const SidebarEntryLook&) const = default;
};

/// A row of the sidebar, 32 high: one of the pages, chosen or not. Up and down arrows go from entry
/// to entry.
class SidebarEntry : public QAbstractButton, public Spoken {
public:
    explicit SidebarEntry(QWidget* parent = nullptr);
    void setLook(const SidebarEntryLook& look);
    /// Whether the words have too little room beside the detail.
    bool isShortened() const;
    QSize sizeHint() const override;
    SpokenAs spokenAs() const override { return {QAccessible::ListItem}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    /// The place of the words.
    QRectF wordsRect() const;

    SidebarEntryLook look_;
    Interaction interaction_;
};

} // namespace vellmark::kit
