# Files of pixel loops that are compiled once for each level of the processor's vector instructions;
# src/platform/vector_levels.h tells how they are written and called.
include(CheckCXXCompilerFlag)

option(ORVO_SCALAR "Only the plain level of vectorised files, for every processor" OFF)

set(ORVO_VECTOR_LEVELS)
if(NOT ORVO_SCALAR AND NOT MSVC AND CMAKE_SIZEOF_VOID_P EQUAL 8)
  check_cxx_compiler_flag(-march=x86-64-v4 ORVO_HAS_VECTOR_LEVELS)
  if(ORVO_HAS_VECTOR_LEVELS)
    set(ORVO_VECTOR_LEVELS v3 v4)
  endif()
endif()

# orvo_vectorised(<object library> <files...>): the files at the plain level as its sources, and at
# each further level as objects that go wherever its own go.
function(orvo_vectorised target)
  target_sources(${target} PRIVATE ${ARGN})
  list(TRANSFORM ARGN PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
  foreach(level IN LISTS ORVO_VECTOR_LEVELS)
    if(NOT TARGET ${target}_${level})
      add_library(${target}_${level} OBJECT)
      target_compile_options(${target}_${level} PRIVATE -march=x86-64-${level})
      target_compile_definitions(${target}_${level} PRIVATE ORVO_LEVEL=${level})
      target_include_directories(${target}_${level} PRIVATE
        $<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>)
      target_link_libraries(${target}_${level} PRIVATE orvo_platform orvo_build_flags)
      target_link_libraries(${target} INTERFACE $<TARGET_OBJECTS:${target}_${level}>)
    endif()
    target_sources(${target}_${level} PRIVATE ${ARGN})
  endforeach()
endfunction()
