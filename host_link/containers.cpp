#include "host_link/containers.h"
