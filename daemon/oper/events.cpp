#include "events.hpp"

#include <algorithm>

#include "host_facts.hpp"

namespace ocsysmapd::oper {

void Events::raise(Alarm alarm) {
    if (alarm.id.empty()) {
        throw EventError("missing-element", "an alarm needs an id");
    }
    const auto standing = std::find_if(alarms_.begin(), alarms_.end(),
                                       [&](const Alarm &a) { return a.id == alarm.id; });
    if (standing != alarms_.end()) {
        alarm.time_created = standing->time_created;
        *standing = std::move(alarm);
        return;
    }
    alarm.time_created = now_ns();
    alarms_.push_back(std::move(alarm));
}

void Events::clear(const std::string &id) {
    const auto standing =
        std::find_if(alarms_.begin(), alarms_.end(), [&](const Alarm &a) { return a.id == id; });
    if (standing == alarms_.end()) {
        throw EventError("data-missing", "no alarm " + id + " is raised");
    }
    alarms_.erase(standing);
}

} // namespace ocsysmapd::oper
