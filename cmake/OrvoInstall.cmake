# Install: library with its soname, the modules beside it, public headers, client, CMake package and
# pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS orvo orvo_platform EXPORT orvo-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(module ltkrn13n ltimg13n ltfil13n pdflib)
  if(TARGET ${module})
    install(TARGETS ${module} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  endif()
endforeach()
if(TARGET orvo_client)
  install(TARGETS orvo_client RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  if(TARGET orvo_documents)
    install(TARGETS orvo_documents LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  endif()
  install(TARGETS orvo_pages LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(DIRECTORY include/orvo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(FILES LICENSE README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md docs/commands.md docs/formats.md
  docs/dependencies.md docs/architecture.md docs/reliability.md docs/sandbox.md docs/before_after.png
  DESTINATION ${CMAKE_INSTALL_DOCDIR})

install(EXPORT orvo-targets NAMESPACE orvo:: FILE orvo-targets.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orvo)
configure_package_config_file(cmake/orvo-config.cmake.in "${PROJECT_BINARY_DIR}/orvo-config.cmake"
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orvo)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/orvo-config-version.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/orvo-config.cmake"
  "${PROJECT_BINARY_DIR}/orvo-config-version.cmake"
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/orvo)

# The prefix follows the file, so that an installed tree can be moved.
file(RELATIVE_PATH ORVO_PREFIX_OF_PKGCONFIG
  "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" ORVO_PREFIX_OF_PKGCONFIG "${ORVO_PREFIX_OF_PKGCONFIG}")
configure_file(cmake/orvo.pc.in "${PROJECT_BINARY_DIR}/orvo.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/orvo.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
