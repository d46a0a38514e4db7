#include "overset/hole_cutting.h"
