#include "vtk_output/vtk_data.h"
