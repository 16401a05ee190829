# The Debian package. Its release number starts anew with each version of the program.
set(debian ${CMAKE_CURRENT_LIST_DIR})
set(documents ${CMAKE_INSTALL_DATADIR}/doc/tolvaris-converter)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tolvaris-converter)
set(CPACK_PACKAGE_CONTACT "The Tolvaris engineers <engineers@tolvaris.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL https://${TOLVARIS_WEB_ADDRESS})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "moves animal breeders' records between RSD, CAV and CSV")
set(CPACK_PACKAGE_DESCRIPTION "The Tolvaris File Converter brings a breeder's records into Tolvaris and
out of it again: from tables that a spreadsheet saved as CSV, from the files
of today's Tolvaris (RSD), and into the databases of its old version (CAV).

It checks the commas of each line, knows the headings of many breeders,
links animals to their parents and works out their sexes from the pedigree.
An ODBC driver for Access files comes with it.")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION database)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The toolkit does without its plugins for screens if it must; a window can't.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "odbcinst, fonts-liberation, qt6-qpa-plugins")
# Help opens the web browser by way of the first; the second shows the windows on desktops without X.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils, qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# The entry for the driver manager's list, and the scripts that put it there and take it out.
set(TOLVARIS_ACCESS_LIBRARY ${CPACK_PACKAGING_INSTALL_PREFIX}/${driverFolder}/libtolvarisaccess.so)
configure_file(${PROJECT_SOURCE_DIR}/accessdriver/odbcinst.ini.in ${CMAKE_CURRENT_BINARY_DIR}/odbcinst.ini @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/odbcinst.ini DESTINATION ${dataFolder})
set(registration ${CPACK_PACKAGING_INSTALL_PREFIX}/${dataFolder}/odbcinst.ini)
file(READ ${debian}/driverEntry.sh.in driverEntry)
string(CONFIGURE "${driverEntry}" driverEntry @ONLY)
foreach(script postinst prerm)
    configure_file(${debian}/${script}.in ${CMAKE_CURRENT_BINARY_DIR}/${script} @ONLY)
    list(APPEND CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_BINARY_DIR}/${script})
endforeach()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${debian}/driverEntry.sh.in)

# What every Debian package says of itself.
install(FILES ${debian}/copyright DESTINATION ${documents})
compress(${debian}/changelog ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian.gz)
compress(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian.gz ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
        DESTINATION ${documents})
