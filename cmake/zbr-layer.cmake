# What the libraries above libzbr have in common: names (zbr::NAME, libzbr-NAME), flags, where their headers are.
function(zbr_layer target name)
  add_library(zbr::${name} ALIAS ${target})
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME zbr-${name} EXPORT_NAME ${name} POSITION_INDEPENDENT_CODE ${ZBR_POSITION_INDEPENDENT} CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_compile_features(${target} PUBLIC cxx_std_17 PRIVATE cxx_std_20)
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
                                              $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
                                       PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:zbr_strict_flags>)
  if(EMSCRIPTEN)
    # Exceptions as WebAssembly has them. libzbr goes without: it throws for lack of memory alone and cleans nothing up then.
    target_compile_options(${target} PUBLIC -fwasm-exceptions)
    target_link_options(${target} PUBLIC -fwasm-exceptions)
    target_include_directories(${target} BEFORE PRIVATE ${PROJECT_SOURCE_DIR}/web/compat)  # what the standard library lacks
  endif()
endfunction()
