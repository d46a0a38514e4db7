# Installation: three shared libraries, the public headers in their folders, a CMake package.
#
#   find_package(KVX3DMeshlessToolbox REQUIRED)
#   target_link_libraries(host PRIVATE KVX3D::KVX3DMeshlessToolbox)

include(CMakePackageConfigHelpers)

set(kvx3d_include_dir ${CMAKE_INSTALL_INCLUDEDIR}/kvx3d)
set(kvx3d_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/KVX3DMeshlessToolbox)

install(TARGETS KVX3DMeshlessToolbox KVX3DMatrixSolver KVX3DHostChecks
        EXPORT KVX3DMeshlessToolboxTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(folder host_link linear_algebra fvm_operators overset vtk_output nonmatching)
  install(DIRECTORY ${folder} DESTINATION ${kvx3d_include_dir} FILES_MATCHING PATTERN "*.h")
endforeach()
install(FILES matrix_solver/matrix_solver.h DESTINATION ${kvx3d_include_dir}/matrix_solver)
install(DIRECTORY host_checks DESTINATION ${kvx3d_include_dir}
        FILES_MATCHING PATTERN "*.h" PATTERN detail EXCLUDE)

install(EXPORT KVX3DMeshlessToolboxTargets NAMESPACE KVX3D:: DESTINATION ${kvx3d_package_dir})
configure_package_config_file(cmake/KVX3DMeshlessToolboxConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/KVX3DMeshlessToolboxConfig.cmake
  INSTALL_DESTINATION ${kvx3d_package_dir})
write_basic_package_version_file(
  ${CMAKE_CURRENT_BINARY_DIR}/KVX3DMeshlessToolboxConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/KVX3DMeshlessToolboxConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/KVX3DMeshlessToolboxConfigVersion.cmake
        DESTINATION ${kvx3d_package_dir})
