# Toolchain: WebAssembly by Emscripten, from Debian's package or wherever em++ is; run by node or a browser.
find_program(ZBR_EMXX em++ REQUIRED)
execute_process(COMMAND em-config EMSCRIPTEN_ROOT OUTPUT_VARIABLE ZBR_EMSCRIPTEN OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG" CACHE STRING "Flags of optimised code")
include(${ZBR_EMSCRIPTEN}/cmake/Modules/Platform/Emscripten.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR node)

# This machine's own libraries are for another one. Packages of headers alone can be used as they are, but not from /usr/include,
# where the C library's headers are as well.
cmake_path(APPEND CMAKE_CURRENT_LIST_DIR .. build wasm-headers OUTPUT_VARIABLE headers)
cmake_path(NORMAL_PATH headers)
foreach(folder include/nlohmann share/cmake/nlohmann_json)
  if(EXISTS /usr/${folder} AND NOT EXISTS ${headers}/${folder})
    cmake_path(GET folder PARENT_PATH parent)
    file(COPY /usr/${folder} DESTINATION ${headers}/${parent})
  endif()
endforeach()
list(APPEND CMAKE_PREFIX_PATH ${headers})
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

# Debian keeps what Emscripten asks of node in a place of its own.
if(EXISTS /usr/share/nodejs)
  set_property(GLOBAL PROPERTY RULE_LAUNCH_LINK "${CMAKE_COMMAND} -E env NODE_PATH=/usr/share/nodejs")
endif()
