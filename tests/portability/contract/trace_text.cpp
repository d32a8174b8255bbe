// The bundled text.

#include "../../../platform/trace_text.cpp"
