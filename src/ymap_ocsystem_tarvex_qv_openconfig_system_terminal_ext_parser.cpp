// The walkers of the module, from its description.
#include "ymap_ocsystem_modules.h"

#define YMAP_PASS PARSER
#include "ymap_ocsystem_tarvex_qv_openconfig_system_terminal_ext.def"
