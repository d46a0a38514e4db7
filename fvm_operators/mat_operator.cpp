#include "fvm_operators/mat_operator.h"
