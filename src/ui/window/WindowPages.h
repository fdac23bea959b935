#pragma once

#include "presentation/MainWindowActions.h"
#include "presentation/MainWindowContent.h"

class QWidget;

namespace vellmark {

class WindowPage;

// The kinds of pages of the main window, all in one place.

/// `actions` must outlive the page.
WindowPage* makePage(AgentPage::Kind kind, const MainWindowActions& actions, QWidget* parent);

/// Gives a page the content of its kind.
void setPageContent(WindowPage& page, const PageContent& content);

} // namespace vellmark
