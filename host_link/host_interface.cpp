#include "host_link/host_interface.h"

// Not inline, so that the table of virtual functions is emitted once, in the library.
CPartitionFace_DLL::~CPartitionFace_DLL() = default;
