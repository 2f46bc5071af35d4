/// What stands between the birth of a process that we start and its program: what we have set for ourselves
/// alone (who may read what we write, no core files) is the user's own again.
///
///     process.setChildProcessModifier(&beAsTheUserStartsIt);      // QProcess
///     startForTheUser(u"xdg-open"_s, {url});                      // goes on without us
#pragma once

#include <QStringList>

namespace velorin {

/// In the child. Calls nothing that may not be called there.
void beAsTheUserStartsIt();

/// Starts a program that nobody waits for and that outlives us, in a session of its own. False when it could
/// not be started. (The toolkit's own way does not ask us in the child.)
bool startForTheUser(const QString& program, const QStringList& arguments);

} // namespace velorin
