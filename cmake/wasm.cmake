# Toolchain: WebAssembly by Emscripten, from Debian's package or wherever em++ is; run by node or a browser.
find_program(ZBR_EMXX em++ REQUIRED)
execute_process(COMMAND em-config EMSCRIPTEN_ROOT OUTPUT_VARIABLE ZBR_EMSCRIPTEN OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
# What is loaded over a network is compiled for size; web/CMakeLists.txt names what is not. Where size is asked for em++ forbids inlining,
# unless that is asked for as well: the accessors of the standard library would all be calls, in twice the code and half the speed. Linking
# stays at -O2, which leaves the names of exports as they are; a second run of its optimiser takes what that leaves.
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -finline-functions -mnontrapping-fptoint -msign-ext -DNDEBUG" CACHE STRING "Flags of optimised code" FORCE)
add_compile_options(-Oz)
add_link_options(-sBINARYEN_EXTRA_PASSES=-Oz)
include(${ZBR_EMSCRIPTEN}/cmake/Modules/Platform/Emscripten.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR node)

# This machine's own libraries are for another one.
include(${CMAKE_CURRENT_LIST_DIR}/header-packages.cmake)
zbr_header_packages(wasm-headers include/nlohmann share/cmake/nlohmann_json)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

# Debian keeps what Emscripten asks of node in a place of its own.
if(EXISTS /usr/share/nodejs)
  set_property(GLOBAL PROPERTY RULE_LAUNCH_LINK "${CMAKE_COMMAND} -E env NODE_PATH=/usr/share/nodejs")
endif()
