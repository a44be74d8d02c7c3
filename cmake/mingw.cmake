# Toolchain: programs for Windows on x86-64, built by MinGW-w64 on another system and run there by Wine (cmake/wine.sh).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)  # of GoogleTest
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)  # the variant with std::thread
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine.sh)

# The machine's own libraries are not for Windows.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

include(${CMAKE_CURRENT_LIST_DIR}/header-packages.cmake)
zbr_header_packages(windows-headers include/CLI share/cmake/CLI11 include/nlohmann share/cmake/nlohmann_json)

# The compiler's run-time libraries go into each program and DLL: nothing but what Windows has is needed to run them. The main
# thread's stack is as large as Microsoft's linker makes it, half of what GNU's does.
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -Wl,--stack,1048576")
