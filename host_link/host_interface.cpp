#include "host_link/host_interface.h"

// Out of line, so that the table of virtual functions has one home: the library.
CPartitionFace_DLL::~CPartitionFace_DLL() = default;
