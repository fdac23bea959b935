# What "cmake --install" puts where. The helper programs lie beside the main ones, which look for them
# there. Completions and manual pages are printed by the program itself.

include(GNUInstallDirs)

install(TARGETS vellmark vellmark_watcher vellmark_simulator
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(TARGET vellmark_desktop)
    install(TARGETS vellmark_desktop
        BUNDLE DESTINATION .
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(shell_files ${CMAKE_BINARY_DIR}/completions)
add_custom_command(
    OUTPUT ${shell_files}/vellmark ${shell_files}/_vellmark ${shell_files}/vellmark.fish
    COMMAND ${CMAKE_COMMAND} -E make_directory ${shell_files}
    COMMAND sh -c "\"$1\" completions bash >vellmark && \"$1\" completions zsh >_vellmark && \"$1\" completions fish >vellmark.fish"
        sh $<TARGET_FILE:vellmark>
    WORKING_DIRECTORY ${CMAKE_BINARY_DIR}/completions
    DEPENDS vellmark
    COMMENT "Writing the shell completions"
    VERBATIM)

# English where every system looks, the other languages beside it.
set(man_files ${CMAKE_BINARY_DIR}/man)
set(man_commands "")
foreach(language IN ITEMS en de fr it es)
    set(man_directory ${man_files}/${language}/man1)
    if(language STREQUAL "en")
        set(man_directory ${man_files}/man1)
    endif()
    list(APPEND man_commands
        COMMAND ${CMAKE_COMMAND} -E make_directory ${man_directory}
        COMMAND vellmark man --language ${language} --directory ${man_directory})
endforeach()
add_custom_command(
    OUTPUT ${man_files}/man1/vellmark.1
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${man_files}
    ${man_commands}
    DEPENDS vellmark
    COMMENT "Writing the manual pages"
    VERBATIM)
add_custom_target(documents ALL DEPENDS ${shell_files}/vellmark ${man_files}/man1/vellmark.1)

install(FILES ${shell_files}/vellmark
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES ${shell_files}/_vellmark DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES ${shell_files}/vellmark.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
install(DIRECTORY ${man_files}/ DESTINATION ${CMAKE_INSTALL_MANDIR})

if(NOT APPLE)
    install(FILES
        ${CMAKE_SOURCE_DIR}/packaging/prometheus/vellmark-metrics.service
        ${CMAKE_SOURCE_DIR}/packaging/prometheus/vellmark-metrics.timer
        DESTINATION lib/systemd/user)
endif()
install(FILES
    ${CMAKE_SOURCE_DIR}/packaging/prometheus/vellmark.rules.yml
    ${CMAKE_SOURCE_DIR}/packaging/prometheus/grafana-dashboard.json
    DESTINATION ${CMAKE_INSTALL_DATADIR}/vellmark/prometheus)
install(FILES ${CMAKE_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
