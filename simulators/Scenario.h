#pragma once

#include <chrono>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>

namespace simulator {

/// What an agent is to do today, read from "$HOME/.vellmark-simulator/<agent>": the first line is
/// the scenario's name, every further line "key=value" adjusts a figure. No file means "normal".
class Scenario {
public:
    static Scenario load(const std::string& agent);

    const std::string& name() const { return name_; }
    bool is(std::initializer_list<std::string_view> names) const;

    std::string text(const std::string& key, const std::string& otherwise) const;
    double number(const std::string& key, double otherwise) const;
    /// A span given in milliseconds.
    std::chrono::milliseconds span(const std::string& key, long otherwise) const;

    /// The pause before each answer: short, or 1.5 s in the scenario "slow" ("delay" overrides).
    std::chrono::milliseconds delay() const;

    /// From now on the agent plays "normal" (the user has logged in).
    void becomeNormal() const;

    const std::filesystem::path& directory() const { return directory_; }

private:
    std::filesystem::path directory_;
    std::string agent_;
    std::string name_ = "normal";
    std::map<std::string, std::string> values_;
};

} // namespace simulator
