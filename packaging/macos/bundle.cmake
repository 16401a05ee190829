# The macOS bundle. Written from the documentation and never built, for want of a Mac.
set(bundle ${CMAKE_CURRENT_LIST_DIR})
set(icon ${PROJECT_SOURCE_DIR}/resources/icons/tolvaris-converter.icns)

set_target_properties(tolvaris-converter PROPERTIES
    MACOSX_BUNDLE ON
    MACOSX_BUNDLE_INFO_PLIST ${bundle}/Info.plist.in
    MACOSX_BUNDLE_BUNDLE_NAME "Tolvaris File Converter"
    MACOSX_BUNDLE_GUI_IDENTIFIER example.tolvaris.converter
    MACOSX_BUNDLE_BUNDLE_VERSION ${PROJECT_VERSION}
    MACOSX_BUNDLE_SHORT_VERSION_STRING ${PROJECT_VERSION}
    MACOSX_BUNDLE_ICON_FILE tolvaris-converter.icns)

# Icon, pictures and help page go where the program looks for them in a bundle, the Access driver where its plug-ins are.
function(put place)
    target_sources(tolvaris-converter PRIVATE ${ARGN})
    set_source_files_properties(${ARGN} PROPERTIES MACOSX_PACKAGE_LOCATION ${place})
endfunction()
put(Resources ${icon})
put(Resources/resources ${builtPictures})
put(Resources/help ${CMAKE_BINARY_DIR}/help/converter_help.htm)
put(Resources/help/pictures ${builtHelpPictures})
add_dependencies(tolvaris-converter tolvarisaccess)
add_custom_command(TARGET tolvaris-converter POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E make_directory $<TARGET_BUNDLE_CONTENT_DIR:tolvaris-converter>/PlugIns/odbc
    COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:tolvarisaccess> $<TARGET_BUNDLE_CONTENT_DIR:tolvaris-converter>/PlugIns/odbc
    VERBATIM)

install(TARGETS tolvaris-converter BUNDLE DESTINATION .)
