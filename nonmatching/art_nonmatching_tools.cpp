#include "nonmatching/art_nonmatching_tools.h"
