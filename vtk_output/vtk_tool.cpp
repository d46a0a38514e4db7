#include "vtk_output/vtk_tool.h"
