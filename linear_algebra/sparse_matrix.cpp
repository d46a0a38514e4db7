#include "linear_algebra/sparse_matrix.h"
