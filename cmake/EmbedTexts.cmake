# cmake -DTABLE=file.cpp -DDIRECTORY=directory -P EmbedTexts.cmake
# Makes a table in the program's constant data of the files NAME.LANGUAGE.md in a directory.
file(GLOB files LIST_DIRECTORIES false "${DIRECTORY}/*.*.md")
set(entries "")
foreach(file IN LISTS files)
    if(NOT file MATCHES "/([a-z]+)\\.([a-z]+)\\.md$")
        message(FATAL_ERROR "${file}: not named NAME.LANGUAGE.md")
    endif()
    set(names "{\"${CMAKE_MATCH_1}\", \"${CMAKE_MATCH_2}\"")
    file(READ "${file}" text)
    string(APPEND entries "    ${names}, R\"text(${text})text\"},\n")
endforeach()
file(WRITE "${TABLE}" "// Made by EmbedTexts.cmake.
#include \"presentation/LegalTexts.h\"

namespace vellmark {

namespace {
constexpr LegalTextFile files[] = {
${entries}};
} // namespace

std::span<const LegalTextFile> legalTextFiles() {
    return files;
}

} // namespace vellmark
")
