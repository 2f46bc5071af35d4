/// Folders of a test's own.
#pragma once

#include "platform/ApplicationFolders.h"

namespace velorin {

struct FakeApplicationFolders final : ApplicationFolders {
    QString data;
    QString temporary;
    QString fullName = QStringLiteral("Ada Lovelace");

    QString dataFolder() const override { return data; }
    QString temporaryFolder() const override { return temporary; }
    QString userFullName() const override { return fullName; }
};

} // namespace velorin
