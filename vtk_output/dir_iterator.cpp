#include "vtk_output/dir_iterator.h"
