#include "host_link/art_gv.h"
