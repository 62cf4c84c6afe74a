#pragma once
// The node that is measured: with the module as the programs load it, an empty chassis, and nobody watching.

#include "node.h"

node::Node& benchNode();
