#pragma once

namespace vellmark {

/// From now on assistive software is told of popovers as dialogs among the application's windows;
/// Qt by itself leaves out windows that take all input. To be called before the application's event
/// loop runs; more than once changes nothing. Main thread.
void tellOfPopovers();

} // namespace vellmark
