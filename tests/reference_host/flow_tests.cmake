# Flow side of the reference host. The suites named Full... run the finer meshes.
kvx3d_add_host_test(reference_host_flow_tests FULL SOURCES
  flow_channel_test.cpp
  flow_cylinder_test.cpp
  flow_parts_test.cpp
  flow_run_test.cpp
  mesh_files.cpp)

# Ctrl-C in the middle of a run, as a user sees it.
add_test(NAME ReferenceHostInterrupt
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/interrupt_run.sh INT ${CMAKE_CURRENT_BINARY_DIR}/interrupted_run
          $<TARGET_FILE:reference_host> cylinder --set n=10)
set_tests_properties(ReferenceHostInterrupt PROPERTIES
  TIMEOUT 300 ENVIRONMENT "${kvx3d_test_environment}")

kvx3d_add_error_test(FlowDiverged "diverged in iteration"
  cylinder --set n=5 --scheme quick --reynolds 10000 --relaxation 0.999
           --output ${scratch}/diverged)
kvx3d_add_error_test(FlowNotConverged "not converged after 2 iterations"
  cylinder --set n=5 --iterations 2 --output ${scratch}/short)
kvx3d_add_error_test(FlowWithoutACylinder "no cylinder"
  cylinder --mesh ${meshes}/box_annulus_overset.geo --set kind=1 --output ${scratch}/out)
kvx3d_add_error_test(FlowWithoutLimits "limits for lud"
  cylinder --set n=5 --check --output ${scratch}/out)
