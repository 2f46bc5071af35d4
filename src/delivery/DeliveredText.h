/// Text on its way into another program, rid of what is no text: a control character may end the paste that
/// it travels in and be taken for a command, and an override of the direction shows another text than there
/// is.
///
///     DeliveredText::cleared(u"ls\x1b[201~\nrm"_s)    // "ls[201~\nrm"
///     DeliveredText::oneLine(u"ls\nrm -r x\n"_s)      // "ls rm -r x"
///
/// Joiners, direction marks and closed overrides stay. Pure, linear.
#pragma once

#include <QString>

namespace velorin::DeliveredText {

/// Without control characters but line feeds and tabs, and without overrides of the direction that their line
/// does not close. Every end of a line is one line feed.
[[nodiscard]] QString cleared(const QString& text);

/// The same on one line, its words one blank apart, without any at its ends: where a line feed would run what
/// stands before it.
[[nodiscard]] QString oneLine(const QString& text);

} // namespace velorin::DeliveredText
