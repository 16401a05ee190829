# What the Debian packages of this repository have in common. A package's CMakeLists.txt includes this file after
# project(), sets the variables of its own package, calls tolvaris_package() and includes CPack. Each project writes the
# configuration of its package to its own build folder, where packaging/pack finds it.
include(GNUInstallDirs)

# The prefix by which installed files name each other: the driver's entry its library, the manual page the files. A build
# configured without a prefix is packed for /usr; a Flatpak is configured for /app.
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
if(CMAKE_INSTALL_PREFIX STREQUAL /usr/local)
    set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_OUTPUT_CONFIG_FILE ${PROJECT_BINARY_DIR}/CPackConfig.cmake)
set(CPACK_SOURCE_OUTPUT_CONFIG_FILE ${PROJECT_BINARY_DIR}/CPackSourceConfig.cmake)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The Tolvaris engineers <engineers@tolvaris.example>")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# The release number starts again at 1 with each version.
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION database)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# tolvaris_compress(<file> <compressed>): compresses a document as distributions want it, without the time of the build.
function(tolvaris_compress file compressed)
    execute_process(COMMAND gzip -9nc ${file} OUTPUT_FILE ${compressed} COMMAND_ERROR_IS_FATAL ANY)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
endfunction()

# tolvaris_package(<name> <component>): names the package, which contains the install() rules of one component, and adds
# the documents that every Debian package has: `copyright` and `changelog` of the folder `debian` beside the calling
# CMakeLists.txt, and the CHANGELOG.md of the project.
function(tolvaris_package name component)
    set(CPACK_PACKAGE_NAME ${name} PARENT_SCOPE)
    set(CPACK_INSTALL_CMAKE_PROJECTS "${CMAKE_BINARY_DIR};${PROJECT_NAME};${component};/" PARENT_SCOPE)
    set(debian ${CMAKE_CURRENT_SOURCE_DIR}/debian)
    tolvaris_compress(${debian}/changelog ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian.gz)
    tolvaris_compress(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz)
    install(FILES ${debian}/copyright ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian.gz ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
endfunction()
