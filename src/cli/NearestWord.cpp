#include "cli/NearestWord.h"

#include <algorithm>
#include <cstddef>

namespace vellmark {
namespace {

/// The longest text that is looked at: what is longer was not mistyped.
constexpr std::size_t longest = 40;
/// Fewer letters begin too many words.
constexpr std::size_t leastPrefix = 2;

/// How many insertions, deletions, replacements and swaps of neighbours make one of the other.
std::size_t distance(std::string_view first, std::string_view second) {
    std::vector<std::vector<std::size_t>> steps(first.size() + 1,
                                                std::vector<std::size_t>(second.size() + 1));
    for (std::size_t i = 0; i <= first.size(); ++i) {
        for (std::size_t j = 0; j <= second.size(); ++j) {
            if (i == 0 || j == 0) {
                steps[i][j] = i + j;
                continue;
            }
            const std::size_t replaced =
                steps[i - 1][j - 1] + (first[i - 1] == second[j - 1] ? 0 : 1);
            steps[i][j] = std::min({steps[i - 1][j] + 1, steps[i][j - 1] + 1, replaced});
            if (i > 1 && j > 1 && first[i - 1] == second[j - 2] && first[i - 2] == second[j - 1]) {
                steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
            }
        }
    }
    return steps[first.size()][second.size()];
}

std::string_view withoutDashes(std::string_view word) {
    return word.substr(std::min(word.find_first_not_of('-'), word.size()));
}

} // namespace

std::string nearestWord(std::string_view typed, const std::vector<std::string>& known) {
    const std::string_view letters = withoutDashes(typed);
    if (letters.empty() || letters.size() > longest) {
        return {};
    }
    std::string nearest;
    std::size_t least = letters.size() < 4 ? 2 : 3; // nearer than this
    for (const std::string& word : known) {
        const std::string_view candidate = withoutDashes(word);
        if (letters.size() >= leastPrefix && candidate.starts_with(letters)) {
            return word;
        }
        if (const std::size_t steps = distance(letters, candidate);
            steps < least && steps < candidate.size()) {
            least = steps;
            nearest = word;
        }
    }
    return nearest;
}

} // namespace vellmark
