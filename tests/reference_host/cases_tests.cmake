# Whole cases of the reference host, and the choice of the matrix solver.
kvx3d_add_host_test(reference_host_case_tests FULL SOURCES
  case_dump_test.cpp
  case_nonmatching_test.cpp
  mesh_files.cpp
  nonmatching_interface_test.cpp
  order_study_test.cpp
  polygon_clip_test.cpp
  solver_matrix_test.cpp)

file(WRITE ${scratch}/no_interface.geo "
  SetFactory(\"OpenCASCADE\");
  DefineConstant[ n = {1, Name \"n\"}, m = {1, Name \"m\"} ];
  Box(1) = {0, 0, 0, 1, 1, 1};
  Physical Volume(\"background\", 1) = {1};
  Physical Surface(\"wall\", 2) = {1:6};
")
kvx3d_add_error_test(UnknownSolver "--solver"
  mms --solver gauss)
kvx3d_add_error_test(NonmatchingSizesDiffer "one m for each n"
  nonmatching --n 4,8 --m 6 --output ${scratch}/out)
kvx3d_add_error_test(NonmatchingNeedsItsNumbers "no parameter \"m\""
  nonmatching --mesh ${meshes}/box_annulus_overset.geo --n 4 --m 6 --output ${scratch}/out)
foreach(case heat cylinder sphere mms dump)
  kvx3d_add_error_test(BlocksIn.${case} "its volumes are block0 and block1"
    ${case} --mesh ${meshes}/nonmatching_blocks.geo)
endforeach()
kvx3d_add_error_test(NothingToJoin "no interface"
  nonmatching --mesh ${scratch}/no_interface.geo --n 1 --m 1 --output ${scratch}/out)
