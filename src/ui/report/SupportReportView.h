#pragma once

#include "presentation/SupportReportContent.h"

#include <QWidget>

#include <array>
#include <functional>
#include <optional>
#include <string>

namespace vellmark {

namespace kit {
class Button;
class Check;
class Field;
class Label;
class TextArea;
} // namespace kit
class ReportProgressView;
class ReportTextView;

/// The window of the support report: what the user says of it, whether addresses stay, the text
/// with what was removed from it, and the ways to hand it on. Control (on macOS Command) with F
/// leads to the field for what is looked for, F3 and Return to the next place, Escape closes. Main
/// thread.
class SupportReportView final : public QWidget {
public:
    static constexpr QSize firstSize{760, 640};
    static constexpr QSize leastSize{600, 460};

    struct Actions {
        std::function<void(const std::string& words)> type;
        std::function<void(bool)> setIncludeEmails;
        std::function<void(const std::string& query)> lookFor;
        std::function<void(int step)> goToMatch;
        std::function<void()> copy;
        std::function<void()> save;
        std::function<void()> mail;
        std::function<void()> showFile;
    };

    explicit SupportReportView(Actions actions, QWidget* parent = nullptr);

    void setContent(const SupportReportContent& content);
    /// What the menu of the text offers.
    void setMenuWords(const QString& copy, const QString& selectAll);
    ReportTextView* text() const { return text_; }

    QSize sizeHint() const override { return firstSize; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void connectControls();
    void setShortcuts();
    void setTexts();
    void setRemoved();
    void mark(std::optional<RemovedKind> kind);
    void arrange();
    void arrangeSearch(const QRect& field);
    int arrangeFoot(int bottom);
    int arrangeNotes(int bottom);

    Actions actions_;
    SupportReportContent content_;
    kit::Label* hint_;
    kit::Label* happenedTitle_;
    kit::TextArea* happened_;
    kit::Check* includeEmails_;
    kit::Field* search_;
    kit::Label* searchStatus_;
    kit::Button* previous_;
    kit::Button* next_;
    ReportTextView* text_;
    ReportProgressView* progress_;
    kit::Label* scopeNote_;
    kit::Label* removedTitle_;
    /// In the order of `removedKinds`.
    std::array<kit::Button*, removedKinds.size()> removed_;
    kit::Label* notice_;
    kit::Button* showFolder_;
    kit::Button* copy_;
    kit::Button* save_;
    kit::Button* mail_;
    QRect noticeMark_;
};

} // namespace vellmark
