/// velorin-model-check ID FOLDER: loads a model of the catalogue from a folder and decodes a second of
/// silence. Started once for a model whose publisher gives no digest, since the run time ends the process on
/// some damaged files. Without a network and with a limit of memory; where the system has none of these, it
/// says so in a line of its own.
#include "app/modelcheck/Confinement.h"
#include "platform/linux/recognition/Recognizer.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>

namespace {

/// What the run time may take besides the model: its code, its threads, and addresses that it never uses.
constexpr std::uint64_t reserve = 4096;

void confine(const velorin::Model& model) {
    using namespace velorin;
    const auto megabytes = 3 * static_cast<std::uint64_t>(model.memoryMegabytes) + reserve;
    if (!Confinement::limitMemory(megabytes * 1024 * 1024))
        std::fputs("velorin-model-check: without a limit of memory\n", stderr);
    if (!Confinement::leaveTheNetwork())
        std::fputs("velorin-model-check: with the network in reach\n", stderr);
}

} // namespace

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
    confine(*model);
    const auto recognizer = velorin::Recognizer::load(*model, arguments[2], model->languages.front());
    if (!recognizer)
        return 1;
    [[maybe_unused]] const std::string text = recognizer->decode(std::vector<float>(16000));
    return 0;
}
