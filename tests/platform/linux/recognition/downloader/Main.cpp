/// model-downloader PLACE {NAME ADDRESS SIZE DIGEST}…: downloads the model "a-model" with these files, as the
/// program would in a process of its own.
#include "platform/linux/recognition/ModelDownload.h"

#include <QCoreApplication>

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    velorin::Model model;
    model.id = QStringLiteral("a-model");
    for (qsizetype i = 2; i + 3 < arguments.size(); i += 4)
        model.files.push_back(
            {arguments[i], arguments[i + 1], arguments[i + 2].toLongLong(), arguments[i + 3].toLatin1()});
    const velorin::ModelStore store({}, arguments.value(1));
    QNetworkAccessManager network;
    velorin::ModelDownload download(network, store, model,
                                    [](const QString&, const velorin::Model&) { return true; }, {});
    return QCoro::waitFor(download.run({})) ? 0 : 1;
}
