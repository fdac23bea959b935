#include "ui/window/TitleBar.h"

namespace vellmark {

int reachUnderTitleBar(QWidget& /*window*/) {
    return 0;
}

} // namespace vellmark
