// The bundled diagnostics.

#include "../../../platform/diagnostics.cpp"
