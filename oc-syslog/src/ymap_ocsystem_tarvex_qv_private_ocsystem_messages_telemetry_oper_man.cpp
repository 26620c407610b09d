// Hand-written functions of Tarvex-QV-PRIVATE-ocsystem-messages-telemetry-oper,
// native to OpenConfig.
#include "ymap_syslog.hpp"

// The operational severity speaks the servers' dialect, not the console's
// that the configured level of the same container uses.
YMAP_HAND(
    ymap_qo_ocsystem_tarvexqvprivateocsystemmessagestelemetryoper_leaf_lvla_ocsyslog_state_severity) {
    return ymap::add_value(ctx, out_tree, "/system/messages/state/severity", NS_OPENCONFIG_SYSTEM,
                           qv_oc_syslog_severity_conversion(ctx, node->value));
}
