/// Names the ContextProfile of the application that will receive the text.
///
/// Applications are known by their identifier (`kin` of RunningApplication), the pages of a browser by the
/// title of its window. Whatever is missing ends in the generic profile.
///
///     ContextDetector::detect(u"net.kovidgoyal.kitty"_s, titleOfWindow)     // terminal; asks for no title
///     ContextDetector::detect(u"org.mozilla.firefox"_s, titleOfWindow)      // "Inbox - Gmail": email
///
/// Pure but for the title, which is asked for on the caller's thread, at most once, and only of browsers.
#pragma once

#include "delivery/ContextProfile.h"

#include <QStringView>

#include <functional>
#include <optional>

namespace velorin::ContextDetector {

using WindowTitle = std::function<std::optional<QString>()>;

/// `bundleID` is nothing where there is no application, or where it has no identifier.
[[nodiscard]] ContextProfile detect(const std::optional<QString>& bundleID, const WindowTitle& windowTitle);

/// By the tables of identifiers, which are compared exactly, case included.
[[nodiscard]] std::optional<ContextProfile> profileForBundleID(QStringView bundleID);

/// By what a title holds anywhere, be it within a word; the title must be lower case.
[[nodiscard]] std::optional<ContextProfile> profileForBrowserTitle(QStringView title);

/// Release channels, with a suffix to the identifier, count.
[[nodiscard]] bool isBrowser(QStringView bundleID);

} // namespace velorin::ContextDetector
