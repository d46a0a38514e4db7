#include "host_link/host_interface.h"

// Plain records and an abstract class: this file only proves that the header stands alone.
