/// Folders of a test's own.
#pragma once

#include "platform/ApplicationFolders.h"

namespace velorin {

struct FakeApplicationFolders final : ApplicationFolders {
    QString data;
    QString temporary;

    QString dataFolder() const override { return data; }
    QString temporaryFolder() const override { return temporary; }
};

} // namespace velorin
