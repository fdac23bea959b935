#include "platform/MailComposer.h"

#include "platform/macos/Retained.h"

#import <AppKit/AppKit.h>
#include <utility>

namespace vellmark {
namespace {

NSString* string(const std::string& text) {
    return [NSString stringWithUTF8String:text.c_str()];
}

class SharedMailComposer final : public MailComposer {
public:
    void compose(MailDraft draft, Done done) override {
        NSSharingService* const service =
            [NSSharingService sharingServiceNamed:NSSharingServiceNameComposeEmail];
        NSArray* const items = [NSArray
            arrayWithObjects:string(draft.body),
                             [NSURL fileURLWithPath:string(draft.attachment.string())], nil];
        if (service == nil || ![service canPerformWithItems:items]) {
            done(MailOutcome::unavailable);
            return;
        }
        [service setRecipients:[NSArray arrayWithObject:string(draft.recipient)]];
        [service setSubject:string(draft.subject)];
        service_ = Retained<NSSharingService*>::retain(service);
        [service performWithItems:items];
        done(MailOutcome::opened);
    }

private:
    /// The last one, which nobody else keeps while the message is written.
    Retained<NSSharingService*> service_;
};

} // namespace

std::unique_ptr<MailComposer> makeMailComposer(Environment /*environment*/) {
    return std::make_unique<SharedMailComposer>();
}

} // namespace vellmark
