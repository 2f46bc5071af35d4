#include "platform/linux/atspi/BusObject.h"

#include <dbus/dbus.h>

namespace velorin {

namespace {
/// With whatever name, this path means nobody.
constexpr char pathOfNobody[] = "/org/a11y/atspi/null";
} // namespace

std::optional<BusName> BusName::from(const std::string& told) {
    if (!dbus_validate_bus_name(told.c_str(), nullptr))
        return std::nullopt;
    return BusName(told);
}

BusName BusName::checked(const char* name) { return from(name).value(); }

std::optional<BusObject> BusObject::from(const std::string& owner, const std::string& path) {
    auto name = BusName::from(owner);
    if (!name || path.size() > longestPath || !dbus_validate_path(path.c_str(), nullptr) ||
        path == pathOfNobody)
        return std::nullopt;
    return BusObject(*std::move(name), path);
}

BusObject BusObject::checked(BusName owner, const char* path) { return from(owner.text(), path).value(); }

} // namespace velorin
