#pragma once

#include "presentation/AgentBlockContent.h"
#include "presentation/AgentUIActions.h"

#include <QWidget>

#include <algorithm>
#include <utility>
#include <vector>

namespace vellmark {

// Lists of views that change in place, so that nothing jumps and the keyboard keeps its place. The
// views are children of `parent`; those that are left over are deleted.

/// Gives each content a view, in order: what is first is shown by the same view as what was first.
template<class View, class Content>
void updateRows(std::vector<View*>& views, const std::vector<Content>& contents, QWidget* parent) {
    while (views.size() > contents.size()) {
        delete views.back();
        views.pop_back();
    }
    while (views.size() < contents.size()) {
        views.push_back(new View(parent));
        views.back()->show();
    }
    for (std::size_t index = 0; index < contents.size(); ++index) {
        views[index]->setContent(contents[index]);
    }
}

/// Puts the views in the agents' order; a view stays with its agent when agents come, go or change
/// places. Their contents are set by the caller.
template<class View>
void updateAgents(std::vector<View*>& views, const std::vector<AgentBlockContent>& agents,
                  const AgentUIActions& actions, QWidget* parent) {
    std::vector<View*> former = std::exchange(views, {});
    for (const AgentBlockContent& agent : agents) {
        const auto found = std::find_if(former.begin(), former.end(), [&](const View* view) {
            return view->agent() == agent.id;
        });
        if (found == former.end()) {
            views.push_back(new View(agent.id, actions, parent));
            views.back()->show();
        } else {
            views.push_back(*found);
            former.erase(found);
        }
    }
    for (const View* gone : former) {
        delete gone;
    }
}

} // namespace vellmark
