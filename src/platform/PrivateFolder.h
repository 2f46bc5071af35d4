/// A folder that only the user may enter. Any thread.
#pragma once

#include <QString>

namespace velorin {

/// Makes the folder and what is missing above it, for the user alone from the first moment. What is there
/// already stays as it is. False when there is no such folder afterwards.
bool makePrivateFolder(const QString& path);

/// Lets nobody but the user into a folder that is there. Only for folders of our own names: others may be
/// shared on purpose. False when it is no folder of the user's.
bool closeFolder(const QString& path);

} // namespace velorin
