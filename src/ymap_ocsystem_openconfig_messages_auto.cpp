// The mappers of the module, from its description.
#include "ymap_ocsystem_modules.h"

#define YMAP_PASS AUTO
#include "ymap_ocsystem_openconfig_messages.def"
