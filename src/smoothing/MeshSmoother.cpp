#include "smoothing/MeshSmoother.h"
