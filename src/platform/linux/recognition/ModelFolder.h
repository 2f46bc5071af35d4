/// The folder of one model among the user's files. Only what we have put there ourselves is ever removed.
/// Any thread.
#pragma once

#include "platform/linux/recognition/ModelCatalog.h"

namespace velorin::ModelFolder {

/// A file that is not complete yet, and what tells its version on the server from another.
[[nodiscard]] QString partOf(const QString& path);
[[nodiscard]] QString validatorOf(const QString& path);

/// Where the digests are recorded that came with no table.
[[nodiscard]] QString digestsOf(const QString& folder);

/// Removes the model's files, whole or not, and the folder when nothing else is in it.
void clear(const QString& folder, const Model& model);

/// Gives the complete folder its place, in one step. Files of the model that are there already go, others
/// stay. False when it is not there afterwards.
[[nodiscard]] bool putInPlace(const QString& complete, const QString& place, const Model& model);

} // namespace velorin::ModelFolder
