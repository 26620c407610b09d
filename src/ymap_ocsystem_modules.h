// The exported mappers and walkers of every module, declared from the module
// descriptions themselves.
#pragma once

#include "ymap_rows.hpp"

#define YMAP_PASS DECLARE
#include "ymap_ocsystem_modules.def"
#undef YMAP_PASS
