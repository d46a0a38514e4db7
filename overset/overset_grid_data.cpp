#include "overset/overset_grid_data.h"
