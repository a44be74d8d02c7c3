# For toolchains of other machines: packages of headers alone can be used as they are, but not from /usr/include, where the C
# library's headers are as well. Copies the named folders of /usr to a folder of build/, where find_package looks then.
function(zbr_header_packages name)
  cmake_path(APPEND CMAKE_CURRENT_FUNCTION_LIST_DIR .. build ${name} OUTPUT_VARIABLE headers)
  cmake_path(NORMAL_PATH headers)
  foreach(folder ${ARGN})
    if(EXISTS /usr/${folder} AND NOT EXISTS ${headers}/${folder})
      cmake_path(GET folder PARENT_PATH parent)
      file(COPY /usr/${folder} DESTINATION ${headers}/${parent})
    endif()
  endforeach()
  set(CMAKE_PREFIX_PATH ${CMAKE_PREFIX_PATH} ${headers} PARENT_SCOPE)
endfunction()
