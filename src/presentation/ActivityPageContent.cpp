#include "presentation/ActivityPageContent.h"

#include "presentation/AgentBlockContent.h"

#include <array>

namespace vellmark {

ActivityPageContent activityPageContent(const UsageState& state, Instant now,
                                        const Localization& words) {
    ActivityPageContent content;
    content.head = pageHead({"nav.activity", "activity.subtitle"}, words);
    content.copy = {words.text("menu.copy"), "doc.on.doc", words.text("activity.copy.help")};
    content.save = {words.text("activity.save"), "square.and.arrow.down",
                    words.text("menu.saveActivity")};
    content.search = words.text("activity.search");
    content.subjectsName = words.text("activity.column.agent");
    content.subjects.push_back({std::nullopt, words.text("activity.agents.all")});
    content.subjects.push_back({AgentProviderID(std::string()), words.text("app.name")});
    for (const AgentProviderID& id : state.providerOrder) {
        content.subjects.push_back({id, agentShortName(id, words)});
    }
    for (const char* key :
         {"activity.level.all", "activity.level.notices", "activity.level.errors"}) {
        content.levels.push_back(words.text(key));
    }
    content.timeTitle = words.text("activity.column.time");
    content.subjectTitle = words.text("activity.column.agent");
    content.textTitle = words.text("activity.column.text");
    content.listName = words.text("nav.activity");
    content.follows = words.text("activity.follows");
    content.rests = words.text("activity.rests");
    content.toNewest = {words.text("activity.toNewest"), "arrow.down", ""};
    content.nothingYet = words.text("activity.nothingYet");
    content.nothingFound = words.text("activity.nothingFound");
    content.showAll = {words.text("activity.showAll"), "", ""};
    content.loading = words.text("activity.loading");
    content.words = words;
    content.now = now;
    return content;
}

} // namespace vellmark
