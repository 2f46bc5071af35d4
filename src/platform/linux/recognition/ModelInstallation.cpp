#include "platform/linux/recognition/ModelInstallation.h"

#include "platform/Log.h"
#include "platform/UsersMask.h"
#include "text/ForeignText.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

/// A gigabyte from a slow disk.
constexpr std::chrono::milliseconds trialDeadline{120'000};

/// Beside the program in the build tree, among its helpers when installed.
QString trialProgram() {
    const QString here = QCoreApplication::applicationDirPath();
    for (const QString& folder :
         {here, QString(here + u"/../libexec/velorin"_s), QString(here + u"/../lib/velorin"_s)})
        if (const QString path = folder + u"/velorin-model-check"_s; QFileInfo(path).isExecutable())
            return path;
    return {};
}

/// Of all that it says, only this is its own: the rest comes from the run time, and from the file on trial.
void tellWhatItLacked(const QByteArray& words) {
    for (const auto& line : words.left(4096).split('\n'))
        if (line.startsWith("velorin-model-check: with"))
            qCWarning(speechLog).noquote()
                << ForeignText::oneLine(QString::fromUtf8(line), ForeignText::longestName);
}

} // namespace

bool ModelInstallation::loadsInAnotherProcess(const QString& folder, const Model& model) {
    QProcess trial;
    trial.setProcessChannelMode(QProcess::MergedChannels);
    trial.setChildProcessModifier(&UsersMask::giveBack);
    trial.start(trialProgram(), {model.id, folder});
    const bool hasEnded = trial.waitForFinished(static_cast<int>(trialDeadline.count()));
    if (!hasEnded)
        trial.kill();
    const bool isGood = hasEnded && trial.exitStatus() == QProcess::NormalExit && trial.exitCode() == 0;
    tellWhatItLacked(trial.readAll());
    if (!isGood)
        qCWarning(speechLog).noquote() << "model" << model.id << "does not load";
    return isGood;
}

} // namespace velorin
