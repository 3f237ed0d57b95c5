#pragma once

// Owning handles for sd-bus objects, so that every early return at the bus boundary
// releases what it took. Private to the Linux platform layer.

#include <memory>
#include <systemd/sd-bus.h>

namespace Platform::Linux {

struct BusUnref {
    void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
};
struct MessageUnref {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
struct SlotUnref {
    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};

using BusPtr = std::unique_ptr<sd_bus, BusUnref>;
using MessagePtr = std::unique_ptr<sd_bus_message, MessageUnref>;
using SlotPtr = std::unique_ptr<sd_bus_slot, SlotUnref>;

// An sd_bus_error that frees itself.
class BusError {
public:
    BusError() = default;
    BusError(const BusError&) = delete;
    BusError& operator=(const BusError&) = delete;
    ~BusError() { sd_bus_error_free(&error_); }

    sd_bus_error* get() { return &error_; }
    bool isSet() const { return sd_bus_error_is_set(&error_); }
    bool hasName(const char* name) const { return sd_bus_error_has_name(&error_, name); }
    const char* name() const { return error_.name ? error_.name : ""; }
    const char* message() const { return error_.message ? error_.message : ""; }

private:
    // All null, as SD_BUS_ERROR_NULL makes it; the macro is a C compound literal, which
    // C++ accepts only as an extension (clang warns).
    sd_bus_error error_{};
};

} // namespace Platform::Linux
