# Numerics side of the reference host, and the program itself.
kvx3d_add_host_test(reference_host_numerics_tests SOURCES
  case_heat_test.cpp
  case_mms_test.cpp
  command_line_test.cpp
  donor_interpolation_test.cpp
  equation_test.cpp
  gradient_test.cpp
  progress_test.cpp
  result_series_test.cpp
  scalar_solver_test.cpp
  stencil_builder_test.cpp
  stencil_records_test.cpp
  stencil_test.cpp)

# What a user sees when something is wrong: one line on standard error and exit code 1.
function(kvx3d_add_error_test name pattern)
  add_test(NAME ReferenceHostErrors.${name}
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/one_line_error.sh ${pattern}
            $<TARGET_FILE:reference_host> ${ARGN})
  set_tests_properties(ReferenceHostErrors.${name} PROPERTIES
    TIMEOUT 120 ENVIRONMENT "${kvx3d_test_environment}")
endfunction()

set(meshes ${PROJECT_SOURCE_DIR}/reference_host/meshes)
set(scratch ${CMAKE_CURRENT_BINARY_DIR}/error_tests)
file(MAKE_DIRECTORY ${scratch})
file(WRITE ${scratch}/plain_file "a file, no directory\n")
file(WRITE ${scratch}/no_mesh.msh "this is no mesh\n")
file(WRITE ${scratch}/no_groups.geo
  "SetFactory(\"OpenCASCADE\");\nBox(1) = {0, 0, 0, 1, 1, 1};\n")

kvx3d_add_error_test(NoCase "no case: give one of cylinder")
kvx3d_add_error_test(UnknownCase "\"fly\" is no case: give one of cylinder" fly)
kvx3d_add_error_test(UnknownOption "wings"
  heat --mesh ${meshes}/channel_cylinder_overset.geo --wings)
kvx3d_add_error_test(MissingMesh "missing.geo"
  heat --mesh ${scratch}/missing.geo --output ${scratch}/out)
kvx3d_add_error_test(BrokenMesh "no_mesh.msh"
  heat --mesh ${scratch}/no_mesh.msh --output ${scratch}/out)
kvx3d_add_error_test(MissingGroups "no_groups.geo"
  heat --mesh ${scratch}/no_groups.geo --output ${scratch}/out)
kvx3d_add_error_test(UnknownNumber "wings"
  heat --mesh ${meshes}/channel_cylinder_overset.geo --set wings=2 --output ${scratch}/out)
kvx3d_add_error_test(CellsOutOfRange "n must be 1 to 400, not 0"
  heat --mesh ${meshes}/channel_cylinder_overset.geo --set n=0 --output ${scratch}/out)
kvx3d_add_error_test(CellsByTheBillion "n must be 1 to 400, not 1e+09"
  heat --mesh ${meshes}/channel_cylinder_overset.geo --set n=1e9 --output ${scratch}/out)
kvx3d_add_error_test(KindOutOfRange "kind must be 0, 1, 2, 3 or 4, not 9"
  mms --kind 9 --n 5)
kvx3d_add_error_test(MeshIsADirectory "this is no file"
  heat --mesh ${meshes} --output ${scratch}/out)
# Gmsh throws out of a parallel loop there, where nothing can catch it.
file(WRITE ${scratch}/corners.geo "
  Point(1) = {0, 0, 0, 1};  Point(2) = {4, 0, 0, 1};  Point(3) = {4, 4, 0, 1};  Point(4) = {0, 4, 0, 1};
  Point(5) = {1, 1, 0, 1};  Point(6) = {2, 1, 0, 1};  Point(7) = {1, 2, 0, 1};
  Line(1) = {1, 2};  Line(2) = {2, 3};  Line(3) = {3, 4};  Line(4) = {4, 1};
  Line(5) = {5, 6};  Line(6) = {6, 7};  Line(7) = {7, 5};
  Curve Loop(1) = {1, 2, 3, 4};  Curve Loop(2) = {5, 6, 7};
  Plane Surface(1) = {1, 2};
  Transfinite Surface {1};
")
kvx3d_add_error_test(ThrownWhereNothingCatches "Surface 1 is transfinite but has"
  heat --mesh ${scratch}/corners.geo --output ${scratch}/out)
kvx3d_add_error_test(RingWithoutThickness "ro must be above the radius 0.5"
  cylinder --set ro=0.5 --output ${scratch}/out)
kvx3d_add_error_test(OutputUnderAFile "cannot be made"
  heat --mesh ${meshes}/channel_cylinder_overset.geo --set n=5
       --output ${scratch}/plain_file/results)
kvx3d_add_error_test(OutputNotWritable "cannot be written"
  heat --mesh ${meshes}/channel_cylinder_overset.geo --set n=5 --output /proc)
kvx3d_add_error_test(MmsNeedsItsNumbers "kind"
  mms --mesh ${meshes}/channel_cylinder_overset.geo --kind 0 --n 5)
kvx3d_add_error_test(MissedLimit "L2 error"
  mms --kind 1 --n 20 --scheme quick --mu 1 --check)

# A long march stopped by Ctrl-C and by a batch system keeps its steps.
foreach(signal INT TERM)
  add_test(NAME ReferenceHostInterruptedHeat.${signal}
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/interrupt_run.sh
            ${signal} ${CMAKE_CURRENT_BINARY_DIR}/interrupted_heat_${signal}
            $<TARGET_FILE:reference_host> heat
            --mesh ${meshes}/channel_cylinder_overset.geo --set n=5 --steps 1000)
  set_tests_properties(ReferenceHostInterruptedHeat.${signal} PROPERTIES
    TIMEOUT 120 ENVIRONMENT "${kvx3d_test_environment}")
endforeach()

# Standard output on a full disk, and into a pager that was closed.
add_test(NAME ReferenceHostLostOutput
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/lost_output.sh ${CMAKE_CURRENT_BINARY_DIR}/lost_output
          $<TARGET_FILE:reference_host> heat
          --mesh ${meshes}/channel_cylinder_overset.geo --set n=5 --steps 2)
set_tests_properties(ReferenceHostLostOutput PROPERTIES
  TIMEOUT 120 ENVIRONMENT "${kvx3d_test_environment}")
