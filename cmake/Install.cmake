# Installs the libraries, headers, a CMake package (find_package(velquor CONFIG) ->
# velquor::velquor and velquor::velquor_static) and a pkg-config file.
include(CMakePackageConfigHelpers)

set(VELQUOR_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/velquor)

install(TARGETS velquor_shared velquor_static EXPORT velquorTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/velquor DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h" PATTERN "resources" EXCLUDE)
install(FILES ${PROJECT_BINARY_DIR}/velquor/include/velquor/version.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velquor)

install(EXPORT velquorTargets NAMESPACE velquor:: DESTINATION ${VELQUOR_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/velquorConfig.cmake.in
  ${PROJECT_BINARY_DIR}/velquorConfig.cmake INSTALL_DESTINATION ${VELQUOR_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/velquorConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/velquorConfig.cmake
  ${PROJECT_BINARY_DIR}/velquorConfigVersion.cmake DESTINATION ${VELQUOR_CMAKE_DIR})

install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/velquor)

configure_file(${PROJECT_SOURCE_DIR}/cmake/velquor.pc.in ${PROJECT_BINARY_DIR}/velquor.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/velquor.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(WIN32)
  # The module-definition file, for hosts that make their own import library (lib /def).
  install(FILES ${PROJECT_BINARY_DIR}/velquor/velquor.def DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
