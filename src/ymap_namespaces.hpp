// The namespaces that the mapping tables name, as NS_<ID> constants made from
// the one module list (ymap_namespaces.h).
#pragma once

#include "ymap_namespaces.h"

#define YMAP_NS_CONSTANT_(id, module, ns) inline constexpr char NS_##id[] = ns;
YMAP_MODULES(YMAP_NS_CONSTANT_)
#undef YMAP_NS_CONSTANT_
