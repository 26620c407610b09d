// The part of NETCONF monitoring this device serves: <get-schema>, by which a
// client fetches the text of every module the hello advertises.
#pragma once

#include <string_view>

namespace ocsysmapd {

inline constexpr std::string_view kMonitoringModule = R"(module ietf-netconf-monitoring {
  namespace "urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring";
  prefix ncm;
  description "The get-schema operation of this device.";
  revision 2010-10-04;

  identity schema-format;
  identity yang { base schema-format; }

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
