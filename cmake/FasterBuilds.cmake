# What makes a build of everything faster and one of a change slower: headers that are precompiled
# (continuous integration, packages, fuzzing), and files that are compiled as one (continuous integration).

# Of Qt, what most files on it include.
set(qt_headers <QAbstractButton> <QApplication> <QKeyEvent> <QLabel> <QMouseEvent> <QPainter>
    <QPainterPath> <QScreen> <QScrollArea> <QWidget>)

# Precompiled headers are made once for all libraries and once for all tests; those on Qt are compiled
# as position-independent code and have their own. What shares them must be compiled alike, and some
# libraries ask for -pthread where others do not.
if(VELLMARK_PRECOMPILED_HEADERS)
    target_compile_options(vellmark_options INTERFACE -pthread)
    set(empty_source ${CMAKE_BINARY_DIR}/precompiled.cpp)
    file(CONFIGURE OUTPUT ${empty_source} CONTENT "")
    set(header_kinds library test)
    if(TARGET Qt6::Widgets)
        list(APPEND header_kinds qt_library qt_test)
    endif()
    foreach(kind IN LISTS header_kinds)
        set(headers vellmark_${kind}_headers)
        add_library(${headers} OBJECT ${empty_source})
        target_link_libraries(${headers} PRIVATE nlohmann_json::nlohmann_json vellmark_options)
        target_precompile_headers(${headers} PRIVATE <algorithm> <chrono>
            <filesystem> <fstream> <functional> <map> <memory> <optional> <string> <thread>
            <vector>)
        if(kind MATCHES "test$" AND BUILD_TESTING)
            set_target_properties(${headers} PROPERTIES VELLMARK_IS_TEST ON)
            target_link_libraries(${headers} PRIVATE GTest::gmock)
            target_precompile_headers(${headers} PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
        endif()
        if(kind MATCHES "^qt")
            target_link_libraries(${headers} PRIVATE Qt6::Widgets)
            target_precompile_headers(${headers} PRIVATE ${qt_headers})
            # What the screens show is most of what each of their files compiles.
            target_include_directories(${headers} PRIVATE ${CMAKE_SOURCE_DIR}/src)
            target_precompile_headers(${headers} PRIVATE
                ${CMAKE_SOURCE_DIR}/src/presentation/AgentPageContent.h
                ${CMAKE_SOURCE_DIR}/src/presentation/SettingsPageContent.h
                ${CMAKE_SOURCE_DIR}/src/ui/Conversions.h)
        else()
            target_precompile_headers(${headers} PRIVATE <nlohmann/json.hpp>)
        endif()
    endforeach()
endif()

# vellmark_share_precompiled_headers(TARGET KIND library...): KIND is library or test, and the target
# uses these.
function(vellmark_share_precompiled_headers target kind)
    if("${target};${ARGN}" MATCHES "vellmark(_|::)(app|ui)|Qt6::Widgets")
        set(kind qt_${kind})
    endif()
    if(VELLMARK_PRECOMPILED_HEADERS)
        target_precompile_headers(${target} REUSE_FROM vellmark_${kind}_headers)
    endif()
endfunction()

# Files that are compiled as one see each other's names: that one hides another says nothing about
# either, and g++ takes their unnamed namespaces for those of a header. So a dozen are united at most,
# and only such as have no name in common. Whether each file would compile alone does not show then;
# a build without this shows it.
target_compile_options(vellmark_options INTERFACE
    $<$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>:-Wno-shadow;$<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>>)

# The names that a file gives to constants, functions and types outside of all others.
function(vellmark_names_in file result)
    set(definition "^[A-Za-z]([A-Za-z0-9_<>,&* ]|::)* ([A-Za-z0-9]+)( =|{| {| :|\\(|\\[).*")
    file(STRINGS ${file} names REGEX "${definition}")
    string(REGEX REPLACE "[][]" "(" names "${names}") # within brackets a list has no items
    list(FILTER names EXCLUDE REGEX "^namespace ")
    list(TRANSFORM names REPLACE " final" "")
    list(TRANSFORM names REPLACE "${definition}" "\\2")
    set(${result} ${names} PARENT_SCOPE)
endfunction()

function(vellmark_unite target)
    if(NOT VELLMARK_UNITY_BUILD)
        return()
    endif()
    get_target_property(sources ${target} SOURCES)
    list(FILTER sources INCLUDE REGEX "\\.cpp$")
    foreach(source IN LISTS sources)
        cmake_path(ABSOLUTE_PATH source NORMALIZE OUTPUT_VARIABLE file)
        cmake_path(IS_PREFIX CMAKE_BINARY_DIR ${file} is_generated)
        if(is_generated)
            continue()
        endif()
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
        vellmark_names_in(${file} names)
        set(group 0)
        while(TRUE)
            set(others ${names_in_${group}})
            list(REMOVE_ITEM others "" ${names})
            list(LENGTH files_in_${group} size)
            if("${others}" STREQUAL "${names_in_${group}}" AND size LESS 12)
                break()
            endif()
            math(EXPR group "${group} + 1")
        endwhile()
        list(APPEND names_in_${group} ${names})
        list(APPEND files_in_${group} ${source})
        set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${group})
    endforeach()
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
endfunction()
