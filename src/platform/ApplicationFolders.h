/// Where the application keeps its files. Main thread.
#pragma once

#include <QString>

namespace velorin {

class ApplicationFolders {
public:
    virtual ~ApplicationFolders() = default;

    /// The folder of history, capture log and models, without a trailing slash. It need not exist yet.
    [[nodiscard]] virtual QString dataFolder() const = 0;

    /// Where recordings lie while they wait to be sent; private to the user, memory-backed where it can be.
    [[nodiscard]] virtual QString temporaryFolder() const = 0;
};

} // namespace velorin
