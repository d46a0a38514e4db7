#include "linear_algebra/solver_samg.h"
