# What a desktop shows of the program: its entry, icons, file types, the description for software centres, the manual page.
set(desktop ${CMAKE_CURRENT_LIST_DIR})
set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
foreach(template example.tolvaris.converter.metainfo.xml tolvaris-converter.1)
    configure_file(${desktop}/${template}.in ${CMAKE_CURRENT_BINARY_DIR}/${template} @ONLY)
endforeach()
tolvaris_compress(${CMAKE_CURRENT_BINARY_DIR}/tolvaris-converter.1 ${CMAKE_CURRENT_BINARY_DIR}/tolvaris-converter.1.gz)

install(FILES ${desktop}/tolvaris-converter.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/example.tolvaris.converter.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${desktop}/tolvaris-converter-mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages
        RENAME tolvaris-converter.xml)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tolvaris-converter.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/resources/icons/ DESTINATION ${icons} FILES_MATCHING PATTERN *.png)
install(FILES ${PROJECT_SOURCE_DIR}/resources/svg/tolvaris.svg
        DESTINATION ${icons}/scalable/apps RENAME tolvaris-converter.svg)
foreach(kind rsd cav)
    install(FILES ${PROJECT_SOURCE_DIR}/resources/svg/documents/${kind}.svg
            DESTINATION ${icons}/scalable/mimetypes RENAME application-x-tolvaris-${kind}.svg)
endforeach()
