// The bundled trace.

#include "../../../platform/trace_text.cpp"
