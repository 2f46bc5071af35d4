// What an application may answer on the accessibility bus: whatever the library takes for a message is read
// in all the ways in which we read one. The bytes are those of a message, its header included.
#include "platform/linux/atspi/BusConnection.h"

#include <cstdint>

namespace velorin {
namespace {

void readEach(DBusMessage& message) {
    (void)BusReader(message).string();
    (void)BusReader(message).string(1 << 20);
    (void)BusReader(message).int32();
    (void)BusReader(message).uint32();
    (void)BusReader(message).boolean();
    (void)BusReader(message).uint32s();
    (void)BusReader(message).strings();
    if (auto held = BusReader(message).variant()) {
        (void)held->string();
        (void)held->int32();
        (void)held->variant();
    }
    const auto objects = BusReader(message).objects();
    for (const auto& object : objects.value_or(std::vector<BusObject>{}))
        // Nothing that we could call gets by, or the library ends the process here.
        dbus_message_unref(
            dbus_message_new_method_call(object.owner().text().c_str(), object.path().c_str(), "a.b", "C"));
}

void readInARow(DBusMessage& message) {
    BusReader reader(message);
    for (int i = 0; i < 8; ++i) {
        (void)reader.string();
        (void)reader.int32();
        (void)reader.strings();
        (void)reader.variant();
    }
}

} // namespace
} // namespace velorin

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace velorin;
    const BusMessage message(
        dbus_message_demarshal(reinterpret_cast<const char*>(bytes), static_cast<int>(size), nullptr));
    if (message) {
        readEach(*message);
        readInARow(*message);
    }
    const std::string text(reinterpret_cast<const char*>(bytes), size);
    const auto half = text.size() / 2;
    if (const auto object = BusObject::from(text.substr(0, half), text.substr(half)))
        dbus_message_unref(
            dbus_message_new_method_call(object->owner().text().c_str(), object->path().c_str(), "a.b", "C"));
    return 0;
}
