# Install rules: headers, library, CMake package (zbr::zbr, zbr::drawing, zbr::formats) and pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS zbr EXPORT zbr-targets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY include/zbr DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT zbr-targets NAMESPACE zbr:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zbr)

# The libraries above, each a component of the package that is there when it was built.
function(zbr_install_component target name headers)
  install(TARGETS ${target} EXPORT zbr-${name}-targets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(EXPORT zbr-${name}-targets NAMESPACE zbr:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zbr)
  install(DIRECTORY include/${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} ${ARGN})
endfunction()
if(TARGET zbr_drawing)
  zbr_install_component(zbr_drawing drawing zbr-drawing)
endif()
if(TARGET zbr_formats)
  zbr_install_component(zbr_formats formats zbr-formats)
endif()

# The installed tool finds the library beside it, wherever the tree was installed or moved to.
if(NOT DEFINED CMAKE_INSTALL_RPATH AND UNIX AND NOT APPLE)
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_FULL_BINDIR} OUTPUT_VARIABLE ZBR_BIN_TO_LIB)
  set(CMAKE_INSTALL_RPATH "$ORIGIN/${ZBR_BIN_TO_LIB}")
endif()

configure_package_config_file(cmake/zbr-config.cmake.in ${PROJECT_BINARY_DIR}/zbr-config.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zbr)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zbr-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zbr-config.cmake ${PROJECT_BINARY_DIR}/zbr-config-version.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zbr)

# Paths are written relative to the file itself, so that the installed tree can be moved and `cmake --install --prefix` works.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE ZBR_PC_PREFIX)
# Absolute install directories are allowed in the cache, so the paths are joined rather than prefixed.
cmake_path(APPEND ZBR_PC_LIBDIR "\${prefix}" "${CMAKE_INSTALL_LIBDIR}")
cmake_path(APPEND ZBR_PC_INCLUDEDIR "\${prefix}" "${CMAKE_INSTALL_INCLUDEDIR}")
if(NOT BUILD_SHARED_LIBS)
  set(ZBR_PC_CFLAGS " -DZBR_STATIC")
endif()
configure_file(cmake/zbr.pc.in ${PROJECT_BINARY_DIR}/zbr.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zbr.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
