// Hand-written functions of Tarvex-QV-PRIVATE-oc-dns-oper, native to OpenConfig.
#include "ymap_module_state.hpp"
#include "ymap_ocsystem_modules.h"

// Every walk of this tree, of any kind, marks itself, so that the
// configuration tree's next walk does not answer what this one has.
YMAP_HAND_COUNT(ymap_qo_ocsystem_tarvexqvprivateocdnsoper_cont_lvla_ocdns) {
    ymap::module_state().is_ocsystem_dns_oper = 1;
    return YFW_SUCCESS;
}
