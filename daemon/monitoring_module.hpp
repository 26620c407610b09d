// The part of NETCONF monitoring this device serves: <get-schema>, by which a
// client fetches the text of every module the hello advertises, and the list
// of those schemas, submodules included, under /netconf-state/schemas.
#pragma once

#include <string_view>

namespace ocsysmapd {

inline constexpr std::string_view kMonitoringModule = R"(module ietf-netconf-monitoring {
  namespace "urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring";
  prefix ncm;
  description "The schemas of this device and the get-schema operation.";
  revision 2010-10-04;

  identity schema-format;
  identity yang { base schema-format; }

  container netconf-state {
    config false;
    container schemas {
      list schema {
        key "identifier version format";
        leaf identifier { type string; }
        leaf version { type string; }
        leaf format {
          type identityref { base schema-format; }
        }
        leaf namespace { type string; mandatory true; }
        leaf-list location {
          type union {
            type enumeration { enum NETCONF; }
            type string;
          }
        }
      }
    }
  }

  rpc get-schema {
    input {
      leaf identifier { type string; mandatory true; }
      leaf version { type string; }
      leaf format {
        type identityref { base schema-format; }
        default yang;
      }
    }
    output { anyxml data; }
  }
}
)";

} // namespace ocsysmapd
