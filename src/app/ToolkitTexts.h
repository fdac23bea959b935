#pragma once

#include "text/Localization.h"

#include <QTranslator>

#include <memory>

namespace vellmark {

/// What the toolkit itself says, in the menu of a text field and on the buttons of a message, in
/// the language of the application; what its own file dialog says (where the desktop has none) is
/// taken from its catalogs, where they are installed. Main thread.
class ToolkitTexts final : public QTranslator {
public:
    /// Holds for whatever is opened from now on.
    void setWords(const Localization& words) {
        words_ = words;
        catalog_.reset();
    }

    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* sourceText, const char* disambiguation,
                      int count) const override;

private:
    const QTranslator& catalog() const;

    Localization words_{"en"};
    mutable std::unique_ptr<QTranslator> catalog_;
};

} // namespace vellmark
