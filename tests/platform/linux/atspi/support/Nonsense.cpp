#include "tests/platform/linux/atspi/support/Nonsense.h"

#include <array>
#include <limits>

namespace velorin {

namespace {

constexpr int deepest = 3;

constexpr std::array<const char*, 14> texts{
    "",          "no name", ":1.0", ":1.4000000000", "org.freedesktop.DBus", "org.a11y.atspi.Registry",
    "..",        "/",       "//",   "/field",        "/org/a11y/atspi/null", "\x1b]0;title\x07\r\n",
    "\u202eabc", "😀\ufeff"};

constexpr std::array<const char*, 4> paths{"/", "/field", "/org/a11y/atspi/null",
                                           "/org/a11y/atspi/accessible/root"};

constexpr std::array<int, 11> basicTypes{DBUS_TYPE_BYTE,   DBUS_TYPE_BOOLEAN,    DBUS_TYPE_INT16,
                                         DBUS_TYPE_UINT16, DBUS_TYPE_INT32,      DBUS_TYPE_UINT32,
                                         DBUS_TYPE_INT64,  DBUS_TYPE_DOUBLE,     DBUS_TYPE_STRING,
                                         DBUS_TYPE_INT32,  DBUS_TYPE_OBJECT_PATH};

} // namespace

void Nonsense::fill(DBusMessage& message) {
    DBusMessageIter to;
    dbus_message_iter_init_append(&message, &to);
    for (auto values = below(5); values > 0; --values)
        append(to, 0);
}

void Nonsense::append(DBusMessageIter& to, int depth) {
    switch (depth < deepest ? below(8) : 0U) {
    case 1:
        return appendVariant(to, depth + 1);
    case 2:
        return appendStruct(to, depth + 1);
    case 3:
        return appendList(to);
    case 4:
        return appendReferences(to);
    default:
        return appendBasic(to, basicTypes[below(basicTypes.size())]);
    }
}

void Nonsense::appendBasic(DBusMessageIter& to, int type) {
    if (type == DBUS_TYPE_STRING)
        return appendText(to, type, text());
    if (type == DBUS_TYPE_OBJECT_PATH)
        return appendText(to, type, paths[below(paths.size())]);
    DBusBasicValue value{};
    value.i64 = 0;
    if (type == DBUS_TYPE_BOOLEAN)
        value.bool_val = below(2);
    else
        value.i32 = number();
    dbus_message_iter_append_basic(&to, type, &value);
}

void Nonsense::appendText(DBusMessageIter& to, int type, const std::string& text) {
    const auto* characters = text.c_str();
    dbus_message_iter_append_basic(&to, type, &characters);
}

void Nonsense::appendVariant(DBusMessageIter& to, int depth) {
    // What it holds has to be told before: a value of one kind, or a variant once more.
    const bool isNested = depth < deepest && below(4) == 0;
    const int type = isNested ? DBUS_TYPE_VARIANT : basicTypes[below(basicTypes.size())];
    const std::array<char, 2> signature{static_cast<char>(type), 0};
    DBusMessageIter inside;
    dbus_message_iter_open_container(&to, DBUS_TYPE_VARIANT, signature.data(), &inside);
    if (isNested)
        appendVariant(inside, depth + 1);
    else
        appendBasic(inside, type);
    dbus_message_iter_close_container(&to, &inside);
}

void Nonsense::appendStruct(DBusMessageIter& to, int depth) {
    DBusMessageIter inside;
    dbus_message_iter_open_container(&to, DBUS_TYPE_STRUCT, nullptr, &inside);
    for (auto values = 1 + below(3); values > 0; --values)
        append(inside, depth);
    dbus_message_iter_close_container(&to, &inside);
}

void Nonsense::appendList(DBusMessageIter& to) {
    const int type = basicTypes[below(basicTypes.size())];
    const std::array<char, 2> signature{static_cast<char>(type), 0};
    DBusMessageIter inside;
    dbus_message_iter_open_container(&to, DBUS_TYPE_ARRAY, signature.data(), &inside);
    for (auto values = below(100) == 0 ? 3000U : below(5); values > 0; --values)
        appendBasic(inside, type);
    dbus_message_iter_close_container(&to, &inside);
}

void Nonsense::appendReferences(DBusMessageIter& to) {
    const bool hasPaths = below(2) == 0;
    DBusMessageIter list;
    dbus_message_iter_open_container(&to, DBUS_TYPE_ARRAY, hasPaths ? "(so)" : "(ss)", &list);
    for (auto values = below(5); values > 0; --values) {
        DBusMessageIter pair;
        dbus_message_iter_open_container(&list, DBUS_TYPE_STRUCT, nullptr, &pair);
        appendText(pair, DBUS_TYPE_STRING, text());
        appendBasic(pair, hasPaths ? DBUS_TYPE_OBJECT_PATH : DBUS_TYPE_STRING);
        dbus_message_iter_close_container(&list, &pair);
    }
    dbus_message_iter_close_container(&to, &list);
}

std::string Nonsense::text() {
    if (below(200) == 0)
        return std::string(300'000, 'x');
    return texts[below(texts.size())];
}

dbus_int32_t Nonsense::number() {
    switch (below(4)) {
    case 0:
        return std::numeric_limits<dbus_int32_t>::max();
    case 1:
        return std::numeric_limits<dbus_int32_t>::min();
    case 2:
        return static_cast<dbus_int32_t>(below(100));
    default:
        return static_cast<dbus_int32_t>(random_());
    }
}

} // namespace velorin
