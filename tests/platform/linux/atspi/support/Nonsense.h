/// Values for messages as nobody expects them, the same ones for the same seed: of any type, nested, long,
/// empty, almost right.
///
///     Nonsense nonsense(7);
///     nonsense.fill(*reply);
#pragma once

#include <dbus/dbus.h>

#include <random>
#include <string>

namespace velorin {

class Nonsense final {
public:
    explicit Nonsense(unsigned seed) : random_(seed) {}

    /// Appends none to four values.
    void fill(DBusMessage& message);
    [[nodiscard]] unsigned below(unsigned end) { return static_cast<unsigned>(random_() % end); }

private:
    void append(DBusMessageIter& to, int depth);
    void appendBasic(DBusMessageIter& to, int type);
    void appendText(DBusMessageIter& to, int type, const std::string& text);
    void appendVariant(DBusMessageIter& to, int depth);
    void appendStruct(DBusMessageIter& to, int depth);
    void appendList(DBusMessageIter& to);
    void appendReferences(DBusMessageIter& to);
    [[nodiscard]] std::string text();
    [[nodiscard]] dbus_int32_t number();

    std::mt19937 random_;
};

} // namespace velorin
