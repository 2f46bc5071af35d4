/// Who is meant on a message bus, and which of its objects: checked, since the library ends the process when
/// it is given a name or a path that is none, and applications tell us plenty of those.
///
///     const auto child = BusObject::from(told.owner, told.path);
///     if (!child) …                                              // no name, no path, or "nobody"
///     const auto status = BusObject::ours("org.a11y.Bus", "/org/a11y/bus");
#pragma once

#include <compare>
#include <cstddef>
#include <optional>
#include <string>

namespace velorin {

/// A name that somebody on the bus may have. There is none that is not well formed.
class BusName final {
public:
    /// Nothing for what is no name.
    [[nodiscard]] static std::optional<BusName> from(const std::string& told);
    /// A constant of ours. Ends the process over one that is no name.
    template <std::size_t length>
    [[nodiscard]] static BusName ours(const char (&name)[length]) {
        return checked(name);
    }

    [[nodiscard]] const std::string& text() const { return text_; }
    auto operator<=>(const BusName&) const = default;

private:
    explicit BusName(std::string text) : text_(std::move(text)) {}
    [[nodiscard]] static BusName checked(const char* name);

    std::string text_;
};

/// Somebody's object.
class BusObject final {
public:
    /// Toolkits number their objects: who makes a path longer than this, in bytes, is not believed.
    static constexpr std::size_t longestPath = 4096;

    /// Nothing for what is no name or no path, and for the reference by which toolkits say "none".
    [[nodiscard]] static std::optional<BusObject> from(const std::string& owner, const std::string& path);
    /// Constants of ours. Ends the process over what is no name or no path.
    template <std::size_t nameLength, std::size_t pathLength>
    [[nodiscard]] static BusObject ours(const char (&owner)[nameLength], const char (&path)[pathLength]) {
        return checked(BusName::ours(owner), path);
    }
    /// The object under a path of ours, whoever has it.
    template <std::size_t pathLength>
    [[nodiscard]] static BusObject of(const BusName& owner, const char (&path)[pathLength]) {
        return checked(owner, path);
    }

    [[nodiscard]] const BusName& owner() const { return owner_; }
    [[nodiscard]] const std::string& path() const { return path_; }
    bool operator==(const BusObject&) const = default;

private:
    BusObject(BusName owner, std::string path) : owner_(std::move(owner)), path_(std::move(path)) {}
    [[nodiscard]] static BusObject checked(BusName owner, const char* path);

    BusName owner_;
    std::string path_;
};

} // namespace velorin
