#include "ui/window/TitleBar.h"

#include <QWidget>

#import <AppKit/AppKit.h>

namespace vellmark {

int reachUnderTitleBar(QWidget& window) {
    constexpr int buttonsHeight = 52;
    NSWindow* const native = [reinterpret_cast<NSView*>(window.winId()) window];
    [native setStyleMask:[native styleMask] | NSWindowStyleMaskFullSizeContentView];
    [native setTitlebarAppearsTransparent:YES];
    // The page has its own headline; the title stays for the Dock and the window menu.
    [native setTitleVisibility:NSWindowTitleHidden];
    return buttonsHeight;
}

} // namespace vellmark
