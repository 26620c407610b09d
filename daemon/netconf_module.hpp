// The NETCONF protocol operations this device serves, as the YANG module the
// server's context needs to parse them: the running datastore only, with the
// validate and rollback-on-error capabilities. The content of <config> and
// <filter> stays text for the device.
#pragma once

#include <string_view>

namespace ocsysmapd {

inline constexpr std::string_view kNetconfModule = R"(module ietf-netconf {
  namespace "urn:ietf:params:xml:ns:netconf:base:1.0";
  prefix nc;
  description "The protocol operations of this device's running datastore.";

  feature writable-running;
  feature rollback-on-error;
  feature validate;

  // Lets <filter> carry its unqualified type and select attributes.
  extension get-filter-element-attributes;

  grouping running-only {
    choice datastore {
      mandatory true;
      leaf running { type empty; }
    }
  }

  rpc get-config {
    input {
      container source { uses running-only; }
      anyxml filter { nc:get-filter-element-attributes; }
    }
    output { anyxml data; }
  }
  rpc edit-config {
    input {
      container target { uses running-only; }
      leaf default-operation {
        type enumeration { enum merge; enum replace; enum none; }
        default merge;
      }
      leaf test-option {
        if-feature validate;
        type enumeration { enum test-then-set; enum set; enum test-only; }
        default test-then-set;
      }
      leaf error-option {
        type enumeration {
          enum stop-on-error; enum continue-on-error; enum rollback-on-error;
        }
        default stop-on-error;
      }
      choice edit-content {
        mandatory true;
        anyxml config;
      }
    }
  }
  rpc lock {
    input { container target { uses running-only; } }
  }
  rpc unlock {
    input { container target { uses running-only; } }
  }
  rpc get {
    input { anyxml filter { nc:get-filter-element-attributes; } }
    output { anyxml data; }
  }
  rpc close-session;
}
)";

} // namespace ocsysmapd
