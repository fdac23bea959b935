#pragma once

#include <QImage>

#include <functional>
#include <string>
#include <vector>

namespace vellmark {

/// One picture: its name and how to draw it in a language ("de", "en") at a scale.
struct Scene {
    std::string name;
    std::function<QImage(const std::string& language, double scale)> draw;
};

/// Every state of every screen. They are drawn in the current theme.
std::vector<Scene> allScenes();

} // namespace vellmark
