/// Which folder of src/ may include which, and whether the sources keep to it.
///
///     app → ui → core → { cleanup, shortcuts, speech, ai, delivery } → platform → text
///     app → platform/linux → platform
///
/// An arrow allows everything to its right. The five subsystems do not include each other, but for
/// delivery/ContextProfile.h, which cleanup and ai read. platform and text know no display, bus or sound
/// server, and of Qt only its core.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <map>

namespace velorin::layers {

/// Paths below src/ ("core/AppModel.h") and what stands in the files.
using Sources = std::map<QString, QString>;

/// Whether Qt's core has a header of this name ("QString").
using IsCoreHeader = std::function<bool(const QString& header)>;

/// One line a violation: "core/AppModel.h: ui/Window.h". Empty when the sources keep to the rules.
[[nodiscard]] QStringList violations(const Sources& sources, const IsCoreHeader& isCoreHeader);

/// What the sources include, in order: between quotes or angle brackets, the rest of the line for anything
/// else.
[[nodiscard]] QStringList includes(const QString& source);

} // namespace velorin::layers
