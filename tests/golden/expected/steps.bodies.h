// Made from steps.x by quorvaxdrc. Change the interface file, not this one.
// What the units of other modules need of its bodies; no part of the library's interface.
#pragma once

#include <quorvapixdr/steps.h>
#include <quorvapixdr/walk.h>
