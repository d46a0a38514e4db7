# Case files, and the sphere. FullSphereFlow runs a coarse form of it.
kvx3d_add_host_test(reference_host_case_file_tests SOURCES
  case_file_test.cpp)
kvx3d_add_host_test(reference_host_sphere_tests FULL SOURCES
  mesh_files.cpp
  sphere_test.cpp)

# A case file's errors as a user sees them.
set(case_files ${CMAKE_CURRENT_BINARY_DIR}/case_files)
file(WRITE ${case_files}/steps.toml "case = \"heat\"\n[solver]\nsteps = -1\n")
file(WRITE ${case_files}/syntax.toml "case = \"heat\"\n[solver\n")
kvx3d_add_error_test(CaseFileValue "steps.toml:3: .*at least 0, not -1"
  ${case_files}/steps.toml)
kvx3d_add_error_test(CaseFileSyntax "syntax.toml:2: " run ${case_files}/syntax.toml)
kvx3d_add_error_test(CaseFileMissing "no case file that can be read" run ${case_files}/none.toml)
kvx3d_add_error_test(CaseFileOption "iterations must be at least 1"
  ${PROJECT_SOURCE_DIR}/reference_host/cases/cylinder.toml --iterations 0)
