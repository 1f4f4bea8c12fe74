# How every target of the project is compiled, said once.
#
# Arithmetic is part of the interface: results are fixed to the last bit, so products and sums are
# never fused and never reordered.
add_library(orvo_build_flags INTERFACE)
target_compile_features(orvo_build_flags INTERFACE cxx_std_20)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

if(MSVC)
  target_compile_options(orvo_build_flags INTERFACE /W4 /WX /fp:precise)
else()
  target_compile_options(orvo_build_flags INTERFACE
    -Wall -Wextra -Wconversion -Wshadow -Werror -ffp-contract=off)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "i[3-6]86")
    target_compile_options(orvo_build_flags INTERFACE -msse2 -mfpmath=sse)
  endif()
endif()

set(ORVO_SANITIZE "" CACHE STRING "Sanitizers for every target, as -fsanitize takes them")
if(ORVO_SANITIZE)
  target_compile_options(orvo_build_flags INTERFACE
    -fsanitize=${ORVO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    # The type of an instance stays inside the library, which exports no more than its entry points.
    -fno-sanitize=vptr)
  target_link_options(orvo_build_flags INTERFACE -fsanitize=${ORVO_SANITIZE})
endif()

# orvo_module(<target> <file name> <sources...>): a module that is loaded at run time under exactly
# this file name, from beside the library that loads it.
function(orvo_module target file_name)
  add_library(${target} SHARED ${ARGN})
  get_filename_component(stem "${file_name}" NAME_WE)
  get_filename_component(suffix "${file_name}" LAST_EXT)
  set_target_properties(${target} PROPERTIES
    PREFIX "" OUTPUT_NAME "${stem}" SUFFIX "${suffix}"
    BUILD_RPATH_USE_ORIGIN ON INSTALL_RPATH "$ORIGIN")
  target_link_libraries(${target} PRIVATE orvo_build_flags)
endfunction()
