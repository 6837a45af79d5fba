# libzentrel: the shared library a host links, made from the static libraries the tests use,
# with its soname versioned (libzentrel.so.1 -> libzentrel.so.1.0.0) and only the public API
# exported. `cmake --install` puts it in place with its headers, the CMake package Zentrel
# (target Zentrel::zentrel) and zentrel.pc.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# The public headers, with the folders they are included by.
set(ZENTREL_PUBLIC_HEADERS
    platform/com/export.h platform/com/types.h platform/com/guid.h platform/com/unknown.h
    platform/com/variant.h platform/com/dispatch.h platform/com/typeinfo.h platform/com/events.h
    platform/com/classfactory.h platform/com/regstore.h
    src/view/entrypoints.h
    htmldoc/htmldocfactory.h
    widget/zentrelwidget.h widget/qtvalues.h widget/propertysheet.h)
set(ZENTREL_INCLUDE_SUBDIR ${CMAKE_INSTALL_INCLUDEDIR}/zentrel)

add_library(zentrel SHARED ${CMAKE_SOURCE_DIR}/widget/zentrelwidget.h)
set_target_properties(zentrel PROPERTIES LINKER_LANGUAGE CXX AUTOMOC OFF VERSION ${PROJECT_VERSION}
                                         SOVERSION ${PROJECT_VERSION_MAJOR} EXPORT_NAME zentrel)
# Every object of the static libraries goes in, whether the library itself calls it or not.
set(ZENTREL_PARTS zentrel_widget zentrel_core zentrel_htmldoc zentrel_contract zentrel_qt zentrel_platform)
list(TRANSFORM ZENTREL_PARTS REPLACE "(.+)" "$<TARGET_FILE:\\1>" OUTPUT_VARIABLE ZENTREL_PART_FILES)
add_dependencies(zentrel ${ZENTREL_PARTS})
target_link_libraries(zentrel PRIVATE -Wl,--whole-archive ${ZENTREL_PART_FILES} -Wl,--no-whole-archive
                              Qt6::Gui Qt6::PrintSupport PUBLIC Qt6::Widgets)
target_link_options(zentrel PRIVATE -Wl,--no-undefined)
target_include_directories(zentrel INTERFACE $<INSTALL_INTERFACE:${ZENTREL_INCLUDE_SUBDIR}>
                                             $<BUILD_INTERFACE:${CMAKE_SOURCE_DIR}>)
add_library(Zentrel::zentrel ALIAS zentrel)

install(TARGETS zentrel EXPORT ZentrelTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(header ${ZENTREL_PUBLIC_HEADERS})
  get_filename_component(dir ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${ZENTREL_INCLUDE_SUBDIR}/${dir})
endforeach()

set(ZENTREL_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Zentrel)
install(EXPORT ZentrelTargets NAMESPACE Zentrel:: DESTINATION ${ZENTREL_CMAKE_DIR})
configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/ZentrelConfig.cmake.in
                              ${CMAKE_BINARY_DIR}/ZentrelConfig.cmake INSTALL_DESTINATION ${ZENTREL_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/ZentrelConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/ZentrelConfig.cmake ${CMAKE_BINARY_DIR}/ZentrelConfigVersion.cmake
        DESTINATION ${ZENTREL_CMAKE_DIR})

configure_file(${CMAKE_SOURCE_DIR}/cmake/zentrel.pc.in ${CMAKE_BINARY_DIR}/zentrel.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/zentrel.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
