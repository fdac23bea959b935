#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace vellmark {

/// A part of the program that takes in bytes which somebody else has made. Whatever they are, it
/// comes to an end in a time linear in their number and touches nothing but its own result.
struct ForeignReader {
    /// Also the name of its seeds' folder.
    std::string_view name;
    /// The dictionary that helps to find its inputs: "json", "terminal", "words" or
    /// "notifications".
    std::string_view dictionary;
    /// Reads, and checks what must hold of the result: ends the program where it does not.
    void (*read)(std::string_view bytes);
};

/// All of them: the table that the fuzzer and the tests of speed go through.
std::span<const ForeignReader> foreignReaders();

/// Those of them that only this system has.
std::vector<ForeignReader> systemReaders();

/// Null when there is none of this name.
const ForeignReader* foreignReader(std::string_view name);

} // namespace vellmark
