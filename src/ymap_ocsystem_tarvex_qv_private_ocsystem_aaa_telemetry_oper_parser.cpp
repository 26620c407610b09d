// The walkers of the module, from its description.
#include "ymap_ocsystem_modules.h"

#define YMAP_PASS PARSER
#include "ymap_ocsystem_tarvex_qv_private_ocsystem_aaa_telemetry_oper.def"
