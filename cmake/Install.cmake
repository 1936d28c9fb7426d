# What a host needs: library, headers, CMake package and pkg-config file.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/varnpdf)

install(TARGETS varnpdf EXPORT varnpdfTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/varnpdf DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h" PATTERN "*.inc")
if(TARGET varnpdf_cli)
    install(TARGETS varnpdf_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(EXPORT varnpdfTargets NAMESPACE varnpdf:: DESTINATION ${package_dir})
configure_package_config_file(packaging/varnpdfConfig.cmake.in varnpdfConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(varnpdfConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/varnpdfConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/varnpdfConfigVersion.cmake
        DESTINATION ${package_dir})

# The prefix is written relative to the .pc file: `cmake --install --prefix` chooses it after configuring.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} OUTPUT_VARIABLE pc_libdir)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_INCLUDEDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}
           OUTPUT_VARIABLE pc_includedir)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
           OUTPUT_VARIABLE pc_to_prefix)
configure_file(packaging/varnpdf.pc.in varnpdf.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/varnpdf.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
