# Flags of everything built here.
#
# -ffp-contract=off: a fused multiply-add rounds differently, and the same input must give the same bits on every machine.
add_compile_options($<$<COMPILE_LANG_AND_ID:CXX,GNU,Clang,AppleClang>:-ffp-contract=off>)
# GCC makes fused instructions of neighbouring products all the same (vfmsubadd), where the processor that it compiles for has any.
include(CheckCXXSourceCompiles)
check_cxx_source_compiles("#ifndef __FMA__\n#error\n#endif\nint main() {}" ZBR_TARGET_HAS_FMA)
if(ZBR_TARGET_HAS_FMA)
  add_compile_options($<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fno-tree-slp-vectorize>)
endif()
add_compile_options($<$<COMPILE_LANG_AND_ID:CXX,MSVC>:/fp:precise$<SEMICOLON>/permissive-$<SEMICOLON>/utf-8>)
if(WIN32)
  # windows.h would make macros of min and max; Microsoft's compiler warns of functions of the C library.
  add_compile_definitions(NOMINMAX $<$<CXX_COMPILER_ID:MSVC>:_CRT_SECURE_NO_WARNINGS>)
endif()

set(ZBR_POSITION_INDEPENDENT ON)  # static libraries may become part of shared ones
if(EMSCRIPTEN)
  set(ZBR_POSITION_INDEPENDENT OFF)  # a program of WebAssembly is one piece
endif()

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

add_library(zbr_strict_flags INTERFACE)
target_compile_options(zbr_strict_flags INTERFACE
  $<$<COMPILE_LANG_AND_ID:CXX,GNU,Clang,AppleClang>:-Wall -Wextra -Wshadow -Wconversion>
  $<$<COMPILE_LANG_AND_ID:CXX,MSVC>:/W4>
  $<$<BOOL:${ZBR_WARNINGS_AS_ERRORS}>:$<$<COMPILE_LANG_AND_ID:CXX,GNU,Clang,AppleClang>:-Werror>>)
