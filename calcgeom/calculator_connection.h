// The process's one connection to the calculator component.
#pragma once

#include "calcgeom/calculator_interface.h"

// The calculator's interface, owned by the application object. Connects first when there is no connection;
// null, after a message to the user, when that fails. The next call tries again.
ICalculator* connected_calculator();
