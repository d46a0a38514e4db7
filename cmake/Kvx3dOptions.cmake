# Build options shared by every target of the project. A consumer inherits none of them.

add_library(kvx3d_build_options INTERFACE)
target_compile_features(kvx3d_build_options INTERFACE cxx_std_17)
# No contraction: results are compared bit for bit across machines, and a fused multiply-add
# rounds once where a product and a sum round twice.
target_compile_options(kvx3d_build_options INTERFACE
  -ffp-contract=off -Wall -Wextra -Wpedantic -Wshadow)
if(KVX3D_WERROR)
  target_compile_options(kvx3d_build_options INTERFACE -Werror)
endif()
if(KVX3D_SANITIZE)
  target_compile_options(kvx3d_build_options INTERFACE
    -fsanitize=${KVX3D_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  target_link_options(kvx3d_build_options INTERFACE -fsanitize=${KVX3D_SANITIZE})
endif()

if(KVX3D_COVERAGE)
  target_compile_options(kvx3d_build_options INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(kvx3d_build_options INTERFACE --coverage)
endif()

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

# Sets hidden symbols and position-independent code, as everything needs that becomes part of a
# shared library.
function(kvx3d_library_properties target)
  set_target_properties(${target} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
endfunction()
