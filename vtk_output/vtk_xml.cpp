#include "vtk_output/vtk_xml.h"
