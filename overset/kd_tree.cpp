#include "overset/kd_tree.h"
