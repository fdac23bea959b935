# Vellmark.app as a disk image: "cmake --build BUILD --target dmg". Signing and notarizing need an
# identity and are described in docs/packaging.md.

set(iconset ${CMAKE_CURRENT_BINARY_DIR}/Vellmark.iconset)
set(icns ${CMAKE_CURRENT_BINARY_DIR}/Vellmark.icns)
set(bundle $<TARGET_BUNDLE_DIR:vellmark_desktop>)
add_custom_command(OUTPUT ${icns}
    COMMAND vellmark_icons iconset ${iconset}
    COMMAND iconutil --convert icns --output ${icns} ${iconset} VERBATIM)

# Always current, whichever target was built last: the icon, the helper programs beside each program
# that looks for them there, and the terminal program in a folder of its own, because most Macs take
# "vellmark" and "Vellmark" for one name.
add_custom_target(vellmark_bundle ALL
    COMMAND ${CMAKE_COMMAND} -E make_directory ${bundle}/Contents/Resources ${bundle}/Contents/Helpers
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${icns} ${bundle}/Contents/Resources/Vellmark.icns
    COMMAND ${CMAKE_COMMAND} -E copy_if_different
        $<TARGET_FILE:vellmark_watcher> $<TARGET_FILE:vellmark_simulator> ${bundle}/Contents/MacOS
    COMMAND ${CMAKE_COMMAND} -E copy_if_different
        $<TARGET_FILE:vellmark> $<TARGET_FILE:vellmark_watcher> $<TARGET_FILE:vellmark_simulator>
        ${bundle}/Contents/Helpers
    DEPENDS ${icns} VERBATIM)
add_dependencies(vellmark_bundle vellmark_desktop vellmark vellmark_watcher vellmark_simulator)

find_program(MACDEPLOYQT macdeployqt HINTS ${Qt6_DIR}/../../../bin)
add_custom_target(dmg
    # Signed by nobody, which a changed library needs on Apple silicon; a real signature replaces it.
    COMMAND ${MACDEPLOYQT} ${bundle} -codesign=-
        -executable=${bundle}/Contents/MacOS/vellmark-watcher
        -executable=${bundle}/Contents/MacOS/vellmark-simulator
        -executable=${bundle}/Contents/Helpers/vellmark
        -executable=${bundle}/Contents/Helpers/vellmark-watcher
        -executable=${bundle}/Contents/Helpers/vellmark-simulator
    COMMAND hdiutil create -ov -fs HFS+ -volname Vellmark -srcfolder ${bundle}
        ${CMAKE_BINARY_DIR}/Vellmark-${PROJECT_VERSION}.dmg
    VERBATIM)
add_dependencies(dmg vellmark_bundle)
