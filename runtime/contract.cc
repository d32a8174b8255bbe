// Compiled before anything else of the codec, so that a platform class that lacks something is told so and no more.

#include "contract.h"
