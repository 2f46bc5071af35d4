/// Which application a window belongs to, in the words of the rules.
///
/// The rules know applications by fixed identifiers; a window gives names of its own. A table joins the two:
/// an application has its own identifier here, which is logged and shown, and its kin, the identifier under
/// which the rules know it or the nearest relative of it. Names are compared without regard to case.
///
///     identify({.windowClass = u"Mousepad"_s})   // org.xfce.mousepad, kin to com.apple.TextEdit
#pragma once

#include <QStringList>

#include <span>
#include <string_view>

namespace velorin::Applications {

/// What a window tells of its application; what is not known is empty.
struct Traces {
    QString windowClass;    ///< The class part of WM_CLASS.
    QString windowInstance; ///< Its instance part.
    QString applicationId;  ///< As toolkits publish it.
    QString executable;     ///< The program's path.
};

struct Identity {
    QString bundleIdentifier;
    QString kin;

    bool operator==(const Identity&) const = default;
};

/// An application that the table lacks is its own kin, under the best name that there is. Nothing only when
/// there are no traces at all.
[[nodiscard]] std::optional<Identity> identify(const Traces& traces);

/// One row of the table. `names` are parted by blanks, in lower case.
struct Row {
    std::string_view bundleIdentifier;
    std::string_view kin;
    std::string_view names;
};
[[nodiscard]] std::span<const Row> table();

} // namespace velorin::Applications
