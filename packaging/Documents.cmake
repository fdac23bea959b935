# What is installed beside the programs: completions and manual pages, which the program prints itself,
# and what Prometheus and Grafana need.

set(shell_files ${CMAKE_BINARY_DIR}/completions)
file(MAKE_DIRECTORY ${shell_files})
add_custom_command(
    OUTPUT ${shell_files}/vellmark ${shell_files}/_vellmark ${shell_files}/vellmark.fish
    COMMAND sh -c "\"$1\" completions bash >vellmark && \"$1\" completions zsh >_vellmark && \"$1\" completions fish >vellmark.fish"
        sh $<TARGET_FILE:vellmark>
    WORKING_DIRECTORY ${shell_files}
    DEPENDS vellmark
    COMMENT "Writing the shell completions"
    VERBATIM)

# English where every system looks, the other languages beside it; compressed without the time.
set(man_files ${CMAKE_BINARY_DIR}/man)
set(write_pages "")
foreach(language IN ITEMS en de fr it es)
    set(directory ${man_files}/${language}/man1)
    if(language STREQUAL "en")
        set(directory ${man_files}/man1)
    endif()
    list(APPEND write_pages
        COMMAND ${CMAKE_COMMAND} -E make_directory ${directory}
        COMMAND vellmark man --language ${language} --directory ${directory})
endforeach()
add_custom_command(
    OUTPUT ${man_files}/man1/vellmark.1.gz
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${man_files}
    ${write_pages}
    COMMAND find ${man_files} -name "*.1" -exec gzip -9nf {} +
    DEPENDS vellmark
    COMMENT "Writing the manual pages"
    VERBATIM)
add_custom_target(vellmark_documents ALL
    DEPENDS ${shell_files}/vellmark ${man_files}/man1/vellmark.1.gz)

# Debian's zsh looks elsewhere.
set(zsh_functions ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
if(EXISTS /etc/debian_version)
    set(zsh_functions ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
endif()
install(FILES ${shell_files}/vellmark
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT terminal)
install(FILES ${shell_files}/_vellmark DESTINATION ${zsh_functions} COMPONENT terminal)
install(FILES ${shell_files}/vellmark.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT terminal)
install(DIRECTORY ${man_files}/ DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT terminal
    PATTERN vellmark-desktop.1.gz EXCLUDE)
if(TARGET vellmark_desktop AND NOT APPLE)
    install(DIRECTORY ${man_files}/ DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT desktop
        FILES_MATCHING PATTERN vellmark-desktop.1.gz)
endif()

install(FILES prometheus/vellmark.rules.yml prometheus/grafana-dashboard.json
    DESTINATION ${CMAKE_INSTALL_DATADIR}/vellmark/prometheus COMPONENT terminal)
if(NOT APPLE)
    configure_file(prometheus/vellmark-metrics.service.in vellmark-metrics.service @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vellmark-metrics.service
        prometheus/vellmark-metrics.timer
        DESTINATION lib/systemd/user COMPONENT terminal)
endif()
