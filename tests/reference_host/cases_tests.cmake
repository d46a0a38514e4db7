# Whole cases of the reference host, and the choice of the matrix solver.
kvx3d_add_host_test(reference_host_case_tests FULL SOURCES
  case_dump_test.cpp
  case_nonmatching_test.cpp
  mesh_files.cpp
  nonmatching_interface_test.cpp
  order_study_test.cpp
  polygon_clip_test.cpp
  solver_matrix_test.cpp)
