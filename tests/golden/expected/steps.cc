// Made from steps.x by quorvaxdrc. Change the interface file, not this one.
#include <quorvapixdr/steps.bodies.h>

using namespace quorva::walk;
namespace coder = quorva::coder;
