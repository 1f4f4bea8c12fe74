# How every target of the project is compiled and linked, said once.
include(CheckPIESupported)
include(OrvoHardening)

option(ORVO_WERROR "Warnings are errors" OFF)
set(ORVO_SANITIZE "" CACHE STRING "Sanitizers for every target, as -fsanitize takes them")

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
check_pie_supported(LANGUAGES CXX)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

# Libraries find each other beside themselves, programs by the way from one folder to the other,
# which is the same in the build tree and where it is installed. Search paths are written once, as
# they stay: what CMake rewrites when it installs it first fills up with colons, and an empty search
# path is the working directory.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
function(orvo_beside_libraries target)
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN" BUILD_WITH_INSTALL_RPATH ON)
endfunction()
function(orvo_beside_programs target)
  file(RELATIVE_PATH libraries "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  set(paths "$ORIGIN/${libraries}" "$ORIGIN/../lib")
  list(REMOVE_DUPLICATES paths)
  set_target_properties(${target} PROPERTIES INSTALL_RPATH "${paths}" BUILD_WITH_INSTALL_RPATH ON)
endfunction()

# Arithmetic is part of the interface: results are fixed to the last bit, so products and sums are
# never fused and never reordered.
add_library(orvo_build_flags INTERFACE)
target_compile_features(orvo_build_flags INTERFACE cxx_std_20)
if(MSVC)
  target_compile_options(orvo_build_flags INTERFACE /W4 /fp:precise $<$<BOOL:${ORVO_WERROR}>:/WX>)
else()
  target_compile_options(orvo_build_flags INTERFACE -Wall -Wextra -Wconversion -Wshadow
    -ffp-contract=off $<$<BOOL:${ORVO_WERROR}>:-Werror>)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "i[3-6]86")
    target_compile_options(orvo_build_flags INTERFACE -msse2 -mfpmath=sse)
  endif()
endif()
if(ORVO_SANITIZE)
  target_compile_options(orvo_build_flags INTERFACE
    -fsanitize=${ORVO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(orvo_build_flags INTERFACE -fsanitize=${ORVO_SANITIZE})
elseif(NOT MSVC)
  target_link_libraries(orvo_build_flags INTERFACE orvo_hardening)
endif()

# For code that takes no time when it runs, and long to compile.
if(MSVC)
  set(ORVO_QUICK_BUILD)
elseif(ORVO_SANITIZE)
  set(ORVO_QUICK_BUILD -O0)
else()
  set(ORVO_QUICK_BUILD $<$<NOT:$<CONFIG:Debug>>:-O1>)
endif()

# What a library exports, as a linker's version script lists it.
function(orvo_exports target script)
  if(UNIX AND NOT APPLE)
    target_link_options(${target} PRIVATE "LINKER:--version-script=${script}")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${script}")
  endif()
endfunction()

# orvo_module(<target> <file name> <sources...>): a module that is loaded at run time under exactly
# this file name, from beside the library that loads it.
function(orvo_module target file_name)
  add_library(${target} SHARED ${ARGN})
  get_filename_component(stem "${file_name}" NAME_WE)
  get_filename_component(suffix "${file_name}" LAST_EXT)
  set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME "${stem}" SUFFIX "${suffix}")
  orvo_beside_libraries(${target})
  target_link_libraries(${target} PRIVATE orvo_build_flags)
endfunction()
