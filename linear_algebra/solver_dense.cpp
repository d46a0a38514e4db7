#include "linear_algebra/solver_dense.h"
