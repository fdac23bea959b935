#include "ui/UsageFigures.h"

#include "ui/Conversions.h"
#include "ui/ForecastLine.h"
#include "ui/UsageProgressBar.h"
#include "ui/kit/Label.h"

namespace vellmark {

UsageFigures::UsageFigures(const Form& form, QWidget* parent)
    : label(new kit::Label(kit::style::row, form.labelColor, parent)),
      figure(new kit::Label(form.figureStyle, kit::ColorRole::ink, parent)),
      word(new kit::Label(form.wordStyle, kit::ColorRole::ink2, parent)),
      bar(new UsageProgressBar(form.barHeight, parent)),
      reset(new kit::Label(kit::style::small, kit::ColorRole::ink2, parent)),
      planning(new kit::Label(kit::style::small, kit::ColorRole::ink2, parent)),
      forecast(new ForecastLine(parent)) {}

void UsageFigures::setContent(const UsageRowContent& content) {
    label->setWords(qString(content.label));
    label->setToolTip(content.fullLabel != content.label ? qString(content.fullLabel) : QString());
    figure->setColor(content.isMuted ? kit::ColorRole::ink2 : kit::ColorRole::ink);
    figure->setChangingWords(qString(content.figure));
    word->setWords(qString(content.figureWord));
    bar->setContent(content);
    reset->setWords(qString(content.reset));
    reset->setVisible(!content.isUsedUp);
    planning->setWords(qString(content.planning));
    forecast->setContent(content);
}

} // namespace vellmark
