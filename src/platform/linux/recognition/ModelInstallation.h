/// The request to bring one model to this machine, as the asset inventory hands it out.
#pragma once

#include "platform/linux/recognition/ModelDownload.h"

namespace velorin {

class ModelInstallation final : public AssetInstallationRequest {
public:
    ModelInstallation(QNetworkAccessManager& network, std::shared_ptr<const ModelStore> store,
                      const Model& model)
        : store_(std::move(store)), download_(network, *store_, model, &loadsInAnotherProcess, {}) {}

    [[nodiscard]] RecognitionTask<void> downloadAndInstall(Progress progress) override {
        return download_.run(std::move(progress));
    }

    /// Whether the run time loads the model: tried by a program of its own, since it ends the process on some
    /// files. Waits for that program.
    [[nodiscard]] static bool loadsInAnotherProcess(const QString& folder, const Model& model);

private:
    std::shared_ptr<const ModelStore> store_;
    ModelDownload download_;
};

} // namespace velorin
