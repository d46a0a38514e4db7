#include "overset/overset_mesh.h"
