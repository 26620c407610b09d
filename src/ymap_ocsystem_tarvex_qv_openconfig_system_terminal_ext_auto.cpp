// The mappers of the module, from its description.
#include "ymap_ocsystem_modules.h"

#define YMAP_PASS AUTO
#include "ymap_ocsystem_tarvex_qv_openconfig_system_terminal_ext.def"
