# One function for each kind of target, so that all folders have the same build and warnings.

# Designated initializers name the fields that matter; the others have their defaults. g++ complains
# of these too and cannot tell them from forgotten ones; newer clangs have a warning for each.
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-Wmissing-designated-field-initializers VELLMARK_TELLS_DESIGNATED_FIELDS)
if(VELLMARK_TELLS_DESIGNATED_FIELDS)
    set(designated_fields -Wno-missing-designated-field-initializers)
elseif(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set(designated_fields -Wno-missing-field-initializers)
endif()

# g++ 12 takes the library's own moving of strings for overlapping or overflowing copies when it
# optimises (its bugs 105651 and 105329); clang looks for both.
add_library(vellmark_options INTERFACE)
target_compile_options(vellmark_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow ${designated_fields}
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict;-Wno-array-bounds;-Wno-stringop-overflow>
    $<$<BOOL:${VELLMARK_WERROR}>:-Werror>)
target_compile_definitions(vellmark_options INTERFACE
    VELLMARK_VERSION="${PROJECT_VERSION}" VELLMARK_BUILD="${VELLMARK_BUILD_NUMBER}")
if(VELLMARK_SANITIZE)
    target_compile_options(vellmark_options INTERFACE
        -fsanitize=${VELLMARK_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(vellmark_options INTERFACE -fsanitize=${VELLMARK_SANITIZE})
endif()
# The checks of pointers before each use are a quarter of the time to compile, and a wrong pointer
# shows under the sanitizer of addresses too.
if(VELLMARK_SANITIZE MATCHES "undefined")
    target_compile_options(vellmark_options INTERFACE -fno-sanitize=null,alignment,vptr)
endif()

# The tests' own code runs once and is a third of what has to be compiled: it is not optimised, and
# has not the fuzzer's counters.
set(is_test "$<BOOL:$<TARGET_PROPERTY:VELLMARK_IS_TEST>>")
target_compile_options(vellmark_options INTERFACE $<$<AND:${is_test},$<CONFIG:Release>>:-O0>)
if(VELLMARK_SANITIZE MATCHES "fuzzer")
    target_compile_options(vellmark_options INTERFACE $<${is_test}:-fno-sanitize=fuzzer-no-link>)
endif()

# vellmark_library(NAME SOURCES file... USES library...)
# The library of the folder it is called in, as vellmark::NAME. USES lists everything that the
# folder may include: the arrows of docs/architecture.md, written where they bind.
function(vellmark_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;USES")
    add_library(vellmark_${name} STATIC ${arg_SOURCES})
    add_library(vellmark::${name} ALIAS vellmark_${name})
    target_include_directories(vellmark_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(vellmark_${name} PUBLIC ${arg_USES} PRIVATE vellmark_options)
    set_property(GLOBAL APPEND PROPERTY vellmark_libraries vellmark_${name})
    vellmark_share_precompiled_headers(vellmark_${name} library ${arg_USES})
    vellmark_unite(vellmark_${name})
endfunction()

# vellmark_program(NAME OUTPUT file-name SOURCES file... USES library...)
function(vellmark_program name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "OUTPUT" "SOURCES;USES")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_USES} vellmark_options)
    if(arg_OUTPUT)
        set_target_properties(${name} PROPERTIES OUTPUT_NAME ${arg_OUTPUT})
    endif()
    vellmark_share_precompiled_headers(${name} library ${arg_USES})
    vellmark_unite(${name})
endfunction()

# Seconds, for what hangs: under a sanitizer a slow machine takes a minute for some tests.
set(test_patience 120)
if(VELLMARK_SANITIZE)
    set(test_patience 300)
endif()

# vellmark_test(FOLDER SOURCES file... USES library...)
# The tests of one folder of src/ as one program; every case is a test of its own for ctest.
function(vellmark_test folder)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;USES")
    add_executable(vellmark_${folder}_tests ${arg_SOURCES})
    set_target_properties(vellmark_${folder}_tests PROPERTIES VELLMARK_IS_TEST ON)
    target_include_directories(vellmark_${folder}_tests PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    target_link_libraries(vellmark_${folder}_tests PRIVATE
        ${arg_USES} vellmark_test_support GTest::gmock GTest::gtest_main vellmark_options)
    vellmark_share_precompiled_headers(vellmark_${folder}_tests test ${arg_USES})
    vellmark_unite(vellmark_${folder}_tests)
    gtest_discover_tests(vellmark_${folder}_tests DISCOVERY_MODE PRE_TEST
        TEST_PREFIX "${folder}." PROPERTIES TIMEOUT ${test_patience})
endfunction()
