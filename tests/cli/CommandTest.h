#pragma once

#include "cli/ProgramRun.h"
#include "support/AgentSandbox.h"
#include "support/Matchers.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vellmark::tests {

/// Runs the program on a machine of its own, with simulated agents.
class CommandTest : public testing::Test {
protected:
    ProgramRun::Setting setting(std::vector<std::string> arguments, int columns = 0) {
        const std::string directory = sandbox.machine().home.parent_path().string();
        arguments.insert(arguments.begin(), {"--sandbox", directory});
        return {.arguments = std::move(arguments), .columns = columns};
    }
    ProgramResult run(std::vector<std::string> arguments, std::optional<std::string> input = {}) {
        ProgramRun::Setting wanted = setting(std::move(arguments));
        wanted.input = std::move(input);
        return ProgramRun::of(wanted);
    }

    void setPreferences(std::string_view json) {
        writeFile(sandbox.machine().configuration / "Vellmark/preferences.json", json);
    }

    void expectNothingLeft() {
        EXPECT_THAT(sandbox.survivors(), testing::IsEmpty());
        EXPECT_FALSE(sandbox.leftTemporaryFiles());
    }

    AgentSandbox sandbox;
    const std::filesystem::path support = sandbox.machine().supportDirectory();
};

} // namespace vellmark::tests
