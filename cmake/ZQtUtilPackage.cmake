# What is installed, how others find it (CMake and pkg-config), and the archives made of it.

include(CMakePackageConfigHelpers)

set(ZQTUTIL_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/ZQtUtil")
set(ZQTUTIL_HEADER_DIR "${CMAKE_INSTALL_INCLUDEDIR}/ZQtUtil")

install(TARGETS ZQtUtil EXPORT ZQtUtilTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})

foreach(header IN LISTS ZQTUTIL_PUBLIC_HEADERS)
    get_filename_component(folder "${header}" DIRECTORY)
    install(FILES "src/${header}" DESTINATION "${ZQTUTIL_HEADER_DIR}/${folder}")
endforeach()
foreach(header IN LISTS ZQTUTIL_GENERATED_HEADERS)
    get_filename_component(folder "${header}" DIRECTORY)
    install(FILES "${PROJECT_BINARY_DIR}/src/include/${header}" DESTINATION "${ZQTUTIL_HEADER_DIR}/${folder}")
endforeach()

install(EXPORT ZQtUtilTargets NAMESPACE ZQtUtil:: DESTINATION ${ZQTUTIL_CMAKE_DIR})
configure_package_config_file(cmake/ZQtUtilConfig.cmake.in "${PROJECT_BINARY_DIR}/ZQtUtilConfig.cmake"
    INSTALL_DESTINATION ${ZQTUTIL_CMAKE_DIR})
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ZQtUtilConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/ZQtUtilConfig.cmake"
    "${PROJECT_BINARY_DIR}/ZQtUtilConfigVersion.cmake"
    DESTINATION ${ZQTUTIL_CMAKE_DIR})

# Relative, so that an installed tree can be moved.
file(RELATIVE_PATH ZQTUTIL_PREFIX_FROM_PC "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/zqtutil.pc.in "${PROJECT_BINARY_DIR}/zqtutil.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/zqtutil.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(CPACK_GENERATOR TGZ DEB)
set(CPACK_PACKAGE_NAME zqtutil)
set(CPACK_PACKAGE_VENDOR Zelkor)
set(CPACK_PACKAGE_CONTACT "Zelkor <support@zelkor.example>")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qtbase5-dev (>= 5.15), libboost-filesystem-dev (>= 1.74)")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES OFF) # call stacks name functions by the symbol table
include(CPack)
