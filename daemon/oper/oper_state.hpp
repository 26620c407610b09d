// The device's operational back end: on every <get> it makes the nine private
// operational roots from what it knows: the applied configuration (read back
// through the mapping, as the client sees it in get-config), the host's facts
// and the events raised by the person testing.
#pragma once

#include <cstdint>
#include <string_view>

#include "events.hpp"
#include "host_facts.hpp"
#include "native_store.hpp"

namespace ocsysmapd::oper {

class OperState {
public:
    // The device starts now: that is its boot time.
    OperState();

    // The operational roots for the OpenConfig configuration `config` (the
    // roots of a get-config answer).
    Forest build(const Forest &config);

    Events &events() { return events_; }
    uint64_t boot_time() const { return boot_ns_; }

private:
    uint64_t boot_ns_;
    CpuSampler cpus_;
    Events events_;
};

// The OpenConfig roots of a get-config answer (the text the device sends
// inside <data>) as store nodes.
Forest parse_config(std::string_view data_xml);

// The DNS operational walk leaves a mark that silences the next walk of the
// DNS configuration, whenever it comes: an answer that has the operational
// root and not the configuration one gains an empty configuration root after
// it, which takes the mark and maps nothing.
void end_dns_walk(Forest &answer);

} // namespace ocsysmapd::oper
