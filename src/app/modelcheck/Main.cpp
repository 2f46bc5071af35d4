/// velorin-model-check ID FOLDER: loads a model of the catalogue from a folder and decodes a second of
/// silence. Started once for a model whose publisher gives no digest, since the run time ends the process on
/// some damaged files.
#include "platform/linux/recognition/Recognizer.h"

#include <QCoreApplication>

#include <algorithm>

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3)
        return 2;
    const auto models = velorin::ModelCatalog::models();
    const auto model = std::find_if(models.begin(), models.end(),
                                    [&](const velorin::Model& row) { return row.id == arguments[1]; });
    if (model == models.end() || model->languages.isEmpty())
        return 2;
    const auto recognizer = velorin::Recognizer::load(*model, arguments[2], model->languages.front());
    if (!recognizer)
        return 1;
    [[maybe_unused]] const std::string text = recognizer->decode(std::vector<float>(16000));
    return 0;
}
