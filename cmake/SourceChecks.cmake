# Two checks that stand in for a Mac where there is none; they compile nothing that is run.
#
#   check-macos    type-checks src/**/macos against cmake/apple-declarations and GNUstep's headers,
#                  and requires that everything answered in a linux/ folder is answered there too
#   check-libcxx   compiles the sources of the libraries with clang and libc++, the library of Apple's
#                  tools: each by itself, or a dozen as one where the build does so too
#
# A target whose compiler or headers are missing says so and succeeds.

find_program(VELLMARK_CHECK_COMPILER NAMES clang++-16 clang++)
set(check_warnings -Wall -Wextra -Wconversion -Wshadow -Werror)

# vellmark_skipped_check(NAME REASON): stands in for a check that cannot be made here.
function(vellmark_skipped_check name reason)
    add_custom_target(${name} COMMAND ${CMAKE_COMMAND} -E echo "${name} skipped: ${reason}" VERBATIM)
endfunction()

# vellmark_check_file(RESULT FOLDER FILE flag...): one file, checked again only when it
# or something that it includes has changed; appends its stamp to the list RESULT. What must have been
# made before is in check_needs.
function(vellmark_check_file result folder file)
    file(RELATIVE_PATH name ${CMAKE_SOURCE_DIR} ${file})
    string(REPLACE ".." "generated" name ${name})
    set(stamp ${CMAKE_BINARY_DIR}/${folder}/${name}.ok)
    cmake_path(GET stamp PARENT_PATH directory)
    file(MAKE_DIRECTORY ${directory})
    add_custom_command(OUTPUT ${stamp}
        COMMAND ${VELLMARK_CHECK_COMPILER} -fsyntax-only -std=c++20 ${check_warnings}
            ${ARGN} -MD -MF ${stamp}.d -MT ${stamp} ${file}
        COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
        DEPENDS ${file} ${check_needs} DEPFILE ${stamp}.d
        COMMENT "Checking ${name}" VERBATIM)
    set(${result} ${${result}} ${stamp} PARENT_SCOPE)
endfunction()

# A file with the include directories and definitions of a target and of all that it uses, as flags.
function(vellmark_flags_of target check result)
    set(file ${CMAKE_BINARY_DIR}/${check}/${target}.txt)
    set(include "$<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>")
    set(definitions "$<TARGET_PROPERTY:${target},COMPILE_DEFINITIONS>")
    # After the system's own: its directories must not come before those of the standard library.
    file(GENERATE OUTPUT ${file} CONTENT "-I${CMAKE_SOURCE_DIR}/src\n\
-idirafter$<JOIN:$<REMOVE_DUPLICATES:${include}>,\n-idirafter>\n\
$<$<BOOL:${definitions}>:'-D$<JOIN:${definitions},'\n'-D>'>\n")
    set(${result} @${file} PARENT_SCOPE)
endfunction()

# Headers with a source in linux/ but none in the macos/ folder beside it.
function(vellmark_unanswered_questions linux_sources result)
    foreach(source IN LISTS linux_sources)
        cmake_path(GET source STEM name)
        cmake_path(GET source PARENT_PATH folder)
        cmake_path(GET folder PARENT_PATH folder)
        file(GLOB answer ${folder}/macos/${name}.cpp ${folder}/macos/${name}.mm)
        if(EXISTS ${folder}/${name}.h AND NOT answer)
            file(RELATIVE_PATH header ${CMAKE_SOURCE_DIR} ${folder}/${name}.h)
            list(APPEND unanswered ${header})
        endif()
    endforeach()
    list(JOIN unanswered " " unanswered)
    set(${result} ${unanswered} PARENT_SCOPE)
endfunction()

function(vellmark_check_macos)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/*.cpp
        ${CMAKE_SOURCE_DIR}/src/*.mm)
    set(linux_sources ${sources})
    list(FILTER sources INCLUDE REGEX "/macos/")
    list(FILTER linux_sources INCLUDE REGEX "/linux/")
    execute_process(COMMAND gcc -print-file-name=include OUTPUT_VARIABLE gcc_headers
        OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    set(flags -x objective-c++ -fblocks -fobjc-runtime=macosx-13.0 -fobjc-exceptions
        -fconstant-string-class=NSConstantString -DGNUSTEP -DGNUSTEP_BASE_LIBRARY=1
        -DGNU_GUI_LIBRARY=1 -DGNU_RUNTIME=1
        -isystem ${CMAKE_SOURCE_DIR}/cmake/apple-declarations -isystem /usr/include/GNUstep
        -idirafter ${gcc_headers})
    set(includer vellmark_probes)
    if(TARGET vellmark_app)
        set(includer vellmark_app)
    endif()
    vellmark_flags_of(${includer} check-macos include_flags)
    list(APPEND flags ${include_flags})
    foreach(source IN LISTS sources)
        vellmark_check_file(stamps check-macos ${source} ${flags})
    endforeach()
    vellmark_unanswered_questions("${linux_sources}" unanswered)
    if(unanswered)
        add_custom_target(check-macos DEPENDS ${stamps}
            COMMAND ${CMAKE_COMMAND} -E echo "Answered on Linux only: ${unanswered}"
            COMMAND ${CMAKE_COMMAND} -E false VERBATIM)
    else()
        add_custom_target(check-macos DEPENDS ${stamps})
    endif()
endfunction()

# Qt's headers take half of the time of a file that includes them: they are compiled beforehand, as
# qt_precompiled. The flags of all that use Qt are qt_flags: were one of them another, the compiler
# would refuse those headers.
function(vellmark_precompile_qt)
    vellmark_flags_of(vellmark_app check-libcxx flags)
    set(header ${CMAKE_BINARY_DIR}/check-libcxx/qt.h)
    list(TRANSFORM qt_headers PREPEND "#include ")
    list(JOIN qt_headers "\n" includes)
    file(CONFIGURE OUTPUT ${header} CONTENT "${includes}\n")
    add_custom_command(OUTPUT ${header}.pch
        COMMAND ${VELLMARK_CHECK_COMPILER} -std=c++20 ${check_warnings} ${libcxx_flags} ${flags}
            -MD -MF ${header}.d -MT ${header}.pch -x c++-header ${header} -o ${header}.pch
        DEPENDS ${header} ${CMAKE_BINARY_DIR}/check-libcxx/vellmark_app.txt DEPFILE ${header}.d COMMENT "Compiling Qt's headers with libc++" VERBATIM)
    set(qt_flags ${flags} -include-pch ${header}.pch PARENT_SCOPE)
    set(qt_precompiled ${header}.pch PARENT_SCOPE)
endfunction()

function(vellmark_check_libcxx)
    if(TARGET vellmark_app)
        vellmark_precompile_qt()
    endif()
    get_property(libraries GLOBAL PROPERTY vellmark_libraries)
    foreach(library IN LISTS libraries)
        get_target_property(sources ${library} SOURCES)
        get_target_property(directory ${library} SOURCE_DIR)
        if(library MATCHES "^vellmark_(app|ui)")
            set(flags ${qt_flags})
            set(check_needs ${qt_precompiled})
        else()
            vellmark_flags_of(${library} check-libcxx flags)
            set(check_needs)
        endif()
        list(FILTER sources INCLUDE REGEX "\\.cpp$")
        set(groups)
        foreach(source IN LISTS sources)
            cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${directory})
            get_source_file_property(own ${source} TARGET_DIRECTORY ${library} COMPILE_DEFINITIONS)
            get_source_file_property(group ${source} TARGET_DIRECTORY ${library} UNITY_GROUP)
            if(own)
                list(TRANSFORM own PREPEND -D)
            elseif(group MATCHES "^[0-9]+$")
                list(APPEND groups ${group})
                string(APPEND includes_of_${group} "#include \"${source}\"\n")
                continue()
            else()
                set(own)
            endif()
            vellmark_check_file(stamps check-libcxx ${source} ${libcxx_flags} ${flags} ${own})
        endforeach()
        list(REMOVE_DUPLICATES groups)
        foreach(group IN LISTS groups)
            set(united ${CMAKE_BINARY_DIR}/check-libcxx/${library}-${group}.cpp)
            file(CONFIGURE OUTPUT ${united} CONTENT "${includes_of_${group}}" @ONLY)
            unset(includes_of_${group})
            vellmark_check_file(stamps check-libcxx ${united}
                ${libcxx_flags} ${flags} -Wno-shadow)
        endforeach()
    endforeach()
    add_custom_target(check-libcxx DEPENDS ${stamps})
endfunction()

if(NOT VELLMARK_CHECK_COMPILER)
    vellmark_skipped_check(check-macos "clang++ is not installed")
    vellmark_skipped_check(check-libcxx "clang++ is not installed")
    return()
endif()

if(APPLE)
    vellmark_skipped_check(check-macos "the real compiler builds these sources here")
elseif(NOT EXISTS /usr/include/GNUstep/Foundation/Foundation.h OR NOT EXISTS /usr/include/Block.h)
    vellmark_skipped_check(check-macos
        "needs the packages libgnustep-gui-dev, gobjc++ and libblocksruntime-dev")
else()
    vellmark_check_macos()
endif()

# The library's headers are its modules here, which are read once and not for each file again: half of
# the time, and a header that is not included is missed as before.
set(libcxx_flags -stdlib=libc++ -fmodules -fcxx-modules -Wno-modules-ambiguous-internal-linkage
    -fmodules-cache-path=${CMAKE_BINARY_DIR}/check-libcxx/modules)
execute_process(COMMAND ${VELLMARK_CHECK_COMPILER} ${libcxx_flags} -std=c++20 -x c++ -fsyntax-only
    -include version /dev/null RESULT_VARIABLE libcxx_missing OUTPUT_QUIET ERROR_QUIET)
if(libcxx_missing)
    vellmark_skipped_check(check-libcxx "needs libc++'s headers (package libc++-16-dev)")
else()
    vellmark_check_libcxx()
endif()
