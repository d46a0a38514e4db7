#include "linear_algebra/solver_bicgstab.h"
