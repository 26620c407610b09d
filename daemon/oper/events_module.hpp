// The device's own RPCs by which the person testing raises and clears alarms
// and logs a message; their effect shows in <get> under /system/alarms and
// /system/messages/state.
#pragma once

#include <string_view>

namespace ocsysmapd::oper {

inline constexpr std::string_view kEventsModule = R"(module ocsysmapd-events {
  yang-version 1.1;
  namespace "urn:ocsysmap:yang:ocsysmapd-events";
  prefix ev;
  organization "ocsystem-map";
  description
    "Events of the simulated device, raised by the person testing it: the
     alarms it reports under /system/alarms and the last message it reports
     under /system/messages/state. They last as long as the device process.";

  revision 2026-11-25 {
    description "Alarms and the last log message.";
  }

  rpc raise-alarm {
    description
      "Raises an alarm, or changes the one standing under the id (which keeps
       its time-created).";
    input {
      leaf id { type string { length "1..max"; } mandatory true; }
      leaf resource { type string; }
      leaf text { type string; }
      leaf severity {
        type enumeration {
          enum CRITICAL; enum MAJOR; enum MINOR; enum WARNING; enum UNKNOWN;
        }
        mandatory true;
      }
      leaf type-id { type string; }
    }
  }
  rpc clear-alarm {
    description "Clears a standing alarm; an id not raised is data-missing.";
    input {
      leaf id { type string; mandatory true; }
    }
  }
  rpc log-message {
    description "Logs a message: it becomes /system/messages/state/message.";
    input {
      leaf msg { type string; mandatory true; }
      leaf priority { type uint8; }
      leaf app-name { type string; }
      leaf procid { type string; }
      leaf msgid { type string; }
    }
  }
}
)";

} // namespace ocsysmapd::oper
