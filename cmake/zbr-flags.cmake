# Flags of everything built here.
#
# -ffp-contract=off: a fused multiply-add rounds differently, and the same input must give the same bits on every machine.
add_compile_options($<$<COMPILE_LANG_AND_ID:CXX,GNU,Clang,AppleClang>:-ffp-contract=off>)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

add_library(zbr_strict_flags INTERFACE)
target_compile_options(zbr_strict_flags INTERFACE
  $<$<COMPILE_LANG_AND_ID:CXX,GNU,Clang,AppleClang>:-Wall -Wextra -Wshadow -Wconversion>
  $<$<BOOL:${ZBR_WARNINGS_AS_ERRORS}>:$<$<COMPILE_LANG_AND_ID:CXX,GNU,Clang,AppleClang>:-Werror>>)
