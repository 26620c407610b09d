// What only an event makes on a device: its alarms and its last log message.
// The person testing raises and clears them through the device's own RPCs
// (module ocsysmapd-events); they live as long as the device process.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace ocsysmapd::oper {

struct Alarm {
    std::string id;
    std::string resource;
    std::string text;
    std::string severity; // the OpenConfig word: CRITICAL, MAJOR, MINOR, WARNING, UNKNOWN
    std::string type_id;
    uint64_t time_created = 0; // ns since the epoch
};

struct Message {
    std::string msg;
    std::optional<uint8_t> priority;
    std::string app_name;
    std::string procid;
    std::string msgid;
};

// An event the device refuses; nothing changed.
struct EventError : std::runtime_error {
    EventError(std::string tag_, const std::string &message)
        : std::runtime_error(message), tag(std::move(tag_)) {}
    std::string tag; // NETCONF error-tag
};

class Events {
public:
    // A raise of a standing id replaces its text and keeps when it began.
    void raise(Alarm alarm);
    // Throws EventError (data-missing) when no alarm has the id.
    void clear(const std::string &id);
    void log(Message message) { last_message_ = std::move(message); }

    const std::vector<Alarm> &alarms() const { return alarms_; }
    const std::optional<Message> &last_message() const { return last_message_; }

private:
    std::vector<Alarm> alarms_;
    std::optional<Message> last_message_;
};

} // namespace ocsysmapd::oper
