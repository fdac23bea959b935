# CPack: two packages, the terminal program and the desktop application.

set(CPACK_PACKAGE_NAME vellmark)
set(CPACK_PACKAGE_VENDOR "The Vellmark authors")
set(CPACK_PACKAGE_CONTACT "The Vellmark authors <support@vellmark.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://vellmark.example/en/")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL terminal)
if(TARGET vellmark_desktop)
    list(APPEND CPACK_COMPONENTS_ALL desktop)
endif()
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(terminal_summary "usage of coding agents' quotas in the terminal")
set(desktop_summary "usage of coding agents' quotas in the panel")
set(about "Vellmark tells how much of your quota is left in Claude Code, Codex and
Antigravity, when it resets and whether it will last. It asks each agent's own
program, under time limits, and talks to no service itself.")

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TERMINAL_PACKAGE_NAME vellmark)
set(CPACK_DEBIAN_TERMINAL_PACKAGE_RECOMMENDS "expect, zsh")
set(CPACK_DEBIAN_TERMINAL_DESCRIPTION "${terminal_summary}\n${about}")
set(CPACK_DEBIAN_DESKTOP_PACKAGE_NAME vellmark-desktop)
# Qt's plugin for X11 is loaded at run time, where shlibdeps does not see it.
set(CPACK_DEBIAN_DESKTOP_PACKAGE_DEPENDS "vellmark (= ${PROJECT_VERSION}), qt6-qpa-plugins")
set(CPACK_DEBIAN_DESKTOP_PACKAGE_RECOMMENDS
    "default-dbus-session-bus | dbus-session-bus, qt6-translations-l10n, qt6-wayland, xdg-utils")
set(CPACK_DEBIAN_DESKTOP_DESCRIPTION "${desktop_summary}\n${about}
.
This package has the desktop application.")

set(CPACK_RPM_COMPONENT_INSTALL ON)
set(CPACK_RPM_FILE_NAME RPM-DEFAULT)
set(CPACK_RPM_PACKAGE_LICENSE MIT)
set(CPACK_RPM_PACKAGE_GROUP Applications/System)
# With SOURCE_DATE_EPOCH the same bytes on every machine.
set(CPACK_RPM_SPEC_MORE_DEFINE "%define use_source_date_epoch_as_buildtime 1
%define clamp_mtime_to_source_date_epoch 1
%define source_date_epoch_from_changelog 0
%define _buildhost localhost")
set(CPACK_RPM_TERMINAL_PACKAGE_NAME vellmark)
set(CPACK_RPM_TERMINAL_PACKAGE_SUMMARY "${terminal_summary}")
set(CPACK_RPM_TERMINAL_PACKAGE_DESCRIPTION "${about}")
set(CPACK_RPM_DESKTOP_PACKAGE_NAME vellmark-desktop)
set(CPACK_RPM_DESKTOP_PACKAGE_REQUIRES "vellmark = ${PROJECT_VERSION}")
set(CPACK_RPM_DESKTOP_PACKAGE_SUMMARY "${desktop_summary}")
set(CPACK_RPM_DESKTOP_PACKAGE_DESCRIPTION "${about}")
# Shared with other packages.
set(CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION
    /usr/libexec /usr/lib/systemd /usr/lib/systemd/user /usr/share/applications /usr/share/metainfo
    /usr/share/icons /usr/share/icons/hicolor /usr/share/man /usr/share/man/man1
    /usr/share/man/de /usr/share/man/de/man1 /usr/share/man/es /usr/share/man/es/man1
    /usr/share/man/fr /usr/share/man/fr/man1 /usr/share/man/it /usr/share/man/it/man1
    /usr/share/bash-completion /usr/share/bash-completion/completions
    /usr/share/fish /usr/share/fish/vendor_completions.d
    /usr/share/zsh /usr/share/zsh/site-functions /usr/share/zsh/vendor-completions)
foreach(size IN ITEMS 16x16 22x22 24x24 32x32 48x48 64x64 128x128 256x256 512x512 symbolic)
    list(APPEND CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION
        /usr/share/icons/hicolor/${size} /usr/share/icons/hicolor/${size}/apps)
endforeach()

include(CPack)
