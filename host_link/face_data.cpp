#include "host_link/face_data.h"
