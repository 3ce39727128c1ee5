# Defines the installation of the library. Generates the CMake and pkg-config files that applications use to find the
# library. Configures CPack, which creates the packages.

include(CMakePackageConfigHelpers)

set(ZQTUTIL_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/ZQtUtil")
set(ZQTUTIL_HEADER_DIR "${CMAKE_INSTALL_INCLUDEDIR}/ZQtUtil")

# Sets the variable <result> to the folder of Qt's QML modules, relative to Qt's installation prefix. If the library is
# installed with the same prefix as Qt, QML programs find the library's QML module without an additional import path.
function(zqtutil_qml_dir_of_qt result)
    get_target_property(qmake Qt5::qmake IMPORTED_LOCATION)
    foreach(name IN ITEMS QT_INSTALL_PREFIX QT_INSTALL_QML)
        execute_process(COMMAND "${qmake}" -query ${name}
            OUTPUT_VARIABLE ${name} OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    endforeach()
    file(RELATIVE_PATH dir "${QT_INSTALL_PREFIX}" "${QT_INSTALL_QML}")
    if(dir MATCHES "^\\.\\.")
        set(dir "${CMAKE_INSTALL_LIBDIR}/qt5/qml")
    endif()
    set(${result} "${dir}" PARENT_SCOPE)
endfunction()

zqtutil_qml_dir_of_qt(ZQTUTIL_QML_DIR_OF_QT)
set(ZQTUTIL_QML_INSTALL_DIR "${ZQTUTIL_QML_DIR_OF_QT}" CACHE STRING "Folder of QML modules, below the install prefix")
if(IS_ABSOLUTE "${ZQTUTIL_QML_INSTALL_DIR}")
    message(FATAL_ERROR "ZQTUTIL_QML_INSTALL_DIR is a path below the install prefix, not ${ZQTUTIL_QML_INSTALL_DIR}")
endif()
set(ZQTUTIL_QML_MODULE_DIR "${ZQTUTIL_QML_INSTALL_DIR}/Zelkor/Util")

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
    install(FILES "${PROJECT_BINARY_DIR}/include/${header}" DESTINATION "${ZQTUTIL_HEADER_DIR}/${folder}")
endforeach()

# The run path of the QML plugin is relative, so that the plugin still finds the library if the installed tree is moved.
file(RELATIVE_PATH libraries_from_module "/${ZQTUTIL_QML_MODULE_DIR}" "/${CMAKE_INSTALL_LIBDIR}")
set(origin "$ORIGIN")
if(APPLE)
    set(origin "@loader_path")
endif()
set_target_properties(zqtutilqml PROPERTIES INSTALL_RPATH "${origin}/${libraries_from_module}")
install(TARGETS zqtutilqml LIBRARY DESTINATION ${ZQTUTIL_QML_MODULE_DIR})
install(FILES src/Qml/qmldir src/Qml/plugins.qmltypes DESTINATION ${ZQTUTIL_QML_MODULE_DIR})

install(EXPORT ZQtUtilTargets NAMESPACE ZQtUtil:: DESTINATION ${ZQTUTIL_CMAKE_DIR})
configure_package_config_file(cmake/ZQtUtilConfig.cmake.in "${PROJECT_BINARY_DIR}/ZQtUtilConfig.cmake"
    INSTALL_DESTINATION ${ZQTUTIL_CMAKE_DIR}
    PATH_VARS ZQTUTIL_QML_INSTALL_DIR ZQTUTIL_TRANSLATIONS_DIR)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ZQtUtilConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/ZQtUtilConfig.cmake"
    "${PROJECT_BINARY_DIR}/ZQtUtilConfigVersion.cmake"
    DESTINATION ${ZQTUTIL_CMAKE_DIR})

# The pkg-config file contains the prefix as a relative path, so that it stays valid if the installed tree is moved.
file(RELATIVE_PATH ZQTUTIL_PREFIX_FROM_PC "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/zqtutil.pc.in "${PROJECT_BINARY_DIR}/zqtutil.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/zqtutil.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(CPACK_GENERATOR TGZ)
if(CMAKE_SYSTEM_NAME STREQUAL Linux)
    list(APPEND CPACK_GENERATOR DEB)
endif()
set(CPACK_PACKAGE_NAME zqtutil)
set(CPACK_PACKAGE_VENDOR Zelkor)
set(CPACK_PACKAGE_CONTACT "Zelkor <support@zelkor.example>")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Adds a "shlibs" file to the package. dpkg-shlibdeps reads this file when it computes the dependencies of packages
# that use the library.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qtbase5-dev (>= 5.15), libboost-filesystem-dev (>= 1.74)")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES OFF) # call stacks need the symbol table for function names
include(CPack)
