#pragma once

#include <QDialog>

#include <functional>

namespace vellmark::kit {

class Button;
class Label;

/// A question before something that cannot be taken back lightly: what is asked, what goes and what
/// stays, and two buttons. The keyboard stands on "Cancel" at first, so that neither Return nor
/// Escape does anything; the other button is named after the deed. Deletes itself when it is
/// closed.
class Question : public QDialog {
public:
    struct Look {
        QString title;
        QString words;
        QString deed;
        QString cancel;
    };

    /// Opens it over the window of `over`, which waits for the answer; `onDeed` is called after it
    /// was closed.
    static Question* ask(QWidget* over, const Look& look, std::function<void()> onDeed);

    Button* deedButton() const { return deed_; }
    Button* cancelButton() const { return cancel_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    Question(QWidget* over, const Look& look);

    Label* title_;
    Label* words_;
    Button* deed_;
    Button* cancel_;
};

} // namespace vellmark::kit
