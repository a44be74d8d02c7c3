# The zip for Windows (cpack): DLL, import library, headers, CMake package, tool, and the terms of all that is linked into them.
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
if(MINGW AND CMAKE_CROSSCOMPILING)  # as Debian's packages bring them
  foreach(part gcc-mingw-w64-x86-64-posix-runtime mingw-w64-common libcli11-dev nlohmann-json3-dev)
    install(FILES /usr/share/doc/${part}/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR}/licences RENAME ${part}.txt OPTIONAL)
  endforeach()
endif()

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME zbr-${PROJECT_VERSION}-windows-x86_64)
set(CPACK_STRIP_FILES ON)
include(CPack)
