#include "overset/overset_mesh_impl.h"
