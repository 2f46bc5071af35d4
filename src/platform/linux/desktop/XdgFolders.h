/// The application's folders by the conventions of Linux desktops.
#pragma once

#include "platform/ApplicationFolders.h"

namespace velorin {

class XdgFolders final : public ApplicationFolders {
public:
    /// "Velorin" in $XDG_DATA_HOME.
    [[nodiscard]] QString dataFolder() const override;
    /// "velorin" in $XDG_RUNTIME_DIR, which is in memory; without one, in the system's temporary folder.
    [[nodiscard]] QString temporaryFolder() const override;

    /// "velorin" in $XDG_CONFIG_HOME.
    [[nodiscard]] static QString configurationFolder();

    /// Lets nobody but the user into those of them that are there, whoever made them and when.
    void close() const;

    /// Removes recordings that a killed process left behind. Names of exactly their form
    /// only, and safe only for the one running instance.
    void removeLeftovers() const;
};

} // namespace velorin
