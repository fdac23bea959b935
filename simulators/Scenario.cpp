#include "Scenario.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace simulator {

Scenario Scenario::load(const std::string& agent) {
    const char* home = std::getenv("HOME");
    Scenario scenario;
    scenario.directory_ = std::filesystem::path(home ? home : "/") / ".vellmark-simulator";
    scenario.agent_ = agent;
    std::ifstream file(scenario.directory_ / agent);
    std::string line;
    if (std::getline(file, line) && !line.empty()) {
        scenario.name_ = line;
    }
    while (std::getline(file, line)) {
        if (const std::size_t equals = line.find('='); equals != std::string::npos) {
            scenario.values_[line.substr(0, equals)] = line.substr(equals + 1);
        }
    }
    return scenario;
}

bool Scenario::is(std::initializer_list<std::string_view> names) const {
    return std::find(names.begin(), names.end(), name_) != names.end();
}

std::string Scenario::text(const std::string& key, const std::string& otherwise) const {
    const auto found = values_.find(key);
    return found == values_.end() ? otherwise : found->second;
}

double Scenario::number(const std::string& key, double otherwise) const {
    const auto found = values_.find(key);
    return found == values_.end() ? otherwise : std::strtod(found->second.c_str(), nullptr);
}

std::chrono::milliseconds Scenario::span(const std::string& key, long otherwise) const {
    return std::chrono::milliseconds(
        static_cast<long>(number(key, static_cast<double>(otherwise))));
}

std::chrono::milliseconds Scenario::delay() const {
    return span("delay", is({"slow"}) ? 1500 : 60);
}

void Scenario::becomeNormal() const {
    std::ofstream file(directory_ / agent_);
    file << "normal\n";
    for (const auto& [key, value] : values_) {
        file << key << '=' << value << '\n';
    }
}

} // namespace simulator
