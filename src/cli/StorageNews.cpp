#include "cli/StorageNews.h"

#include "cli/Subcommand.h"
#include "platform/Preferences.h"
#include "store/ActivityTexts.h"
#include "store/StorageTrouble.h"
#include "text/SystemErrorText.h"
#include "text/TerminalText.h"

#include <string>

namespace vellmark {
namespace {

void report(StorageTrouble& trouble, const CommandContext& context) {
    while (const auto news = trouble.takeNews()) {
        const bool isUnreadable = news->kind == StorageTrouble::Kind::failed;
        const std::string text =
            isUnreadable ? context.words.format(
                               "cli.error.unreadable",
                               {news->file.string(), systemErrorText(news->error, context.words)})
                         : ActivityTexts::storageTrouble(*news, context.words).text;
        context.report(singleLine(text));
    }
}

} // namespace

void reportUnreadable(const Preferences& preferences, const CommandContext& context) {
    StorageTrouble trouble(context.machine.configuration / "Vellmark/preferences.json");
    if (const auto error = preferences.writeError()) {
        trouble.failed(*error);
    }
    report(trouble, context);
}

void reportUnreadable(const LastSnapshots::Contents& contents, const CommandContext& context) {
    StorageTrouble trouble(context.machine.lastSnapshotsFile());
    contents.tell(trouble);
    report(trouble, context);
}

} // namespace vellmark
