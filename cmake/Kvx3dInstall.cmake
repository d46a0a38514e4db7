# Installation: three shared libraries, the public headers in their folders, a CMake package.
#
#   find_package(KVX3DMeshlessToolbox REQUIRED)
#   target_link_libraries(host PRIVATE KVX3D::KVX3DMeshlessToolbox)

include(CMakePackageConfigHelpers)

set(kvx3d_include_dir ${CMAKE_INSTALL_INCLUDEDIR}/kvx3d)
set(kvx3d_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/KVX3DMeshlessToolbox)

# Every header that a host may include, and nothing else: headers in detail/ are internal. The
# tests compile each of these headers alone against the installed package.
set(kvx3d_public_headers
  host_link/art_gv.h
  host_link/containers.h
  host_link/export.h
  host_link/face_data.h
  host_link/host_interface.h
  linear_algebra/solver_bicgstab.h
  linear_algebra/solver_dense.h
  linear_algebra/solver_samg.h
  linear_algebra/sparse_matrix.h
  fvm_operators/mat_operator.h
  overset/hole_cutting.h
  overset/kd_tree.h
  overset/overset_grid_data.h
  overset/overset_mesh.h
  overset/overset_mesh_impl.h
  overset/overset_types.h
  vtk_output/dir_iterator.h
  vtk_output/find_data.h
  vtk_output/vtk_data.h
  vtk_output/vtk_tool.h
  vtk_output/vtk_xml.h
  nonmatching/art_nonmatching_tools.h
  matrix_solver/matrix_solver.h
  host_checks/cut_rules.h
  host_checks/donor_search.h
  host_checks/explanation.h
  host_checks/export.h
  host_checks/fault.h
  host_checks/host_checks.h
  host_checks/host_rules.h
  host_checks/inspection.h
  host_checks/mesh_rules.h
  host_checks/mesh_view.h
  host_checks/point.h
  host_checks/point_tree.h
  host_checks/safe_solve.h)
foreach(header IN LISTS kvx3d_public_headers)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${kvx3d_include_dir}/${folder})
endforeach()

install(TARGETS KVX3DMeshlessToolbox KVX3DMatrixSolver KVX3DHostChecks
        EXPORT KVX3DMeshlessToolboxTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

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
