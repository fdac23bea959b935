#pragma once

#include "text/Localization.h"

#include <QTranslator>

namespace vellmark {

/// What the toolkit itself says, in the menu of a text field and on the buttons of a message, in
/// the language of the application. Main thread.
class ToolkitTexts final : public QTranslator {
public:
    /// Holds for whatever is opened from now on.
    void setWords(const Localization& words) { words_ = words; }

    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* sourceText, const char* disambiguation,
                      int count) const override;

private:
    Localization words_{"en"};
};

} // namespace vellmark
