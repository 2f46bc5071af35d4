// velorin-vectors [--reference] FOLDER…: see Runner.h.
#include "Runner.h"
#include "Suites.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <cstdio>

using namespace Qt::Literals::StringLiterals;

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    // What a model under test logs is not what the cases ask for.
    // … but for the lines of which path a text took: cases ask for them.
    QLoggingCategory::setFilterRules(u"dev.orrin.velorin.*=false\ndev.orrin.velorin.insert.info=true"_s);
    velorin::vectors::RunOptions options;
    options.folders = QCoreApplication::arguments().mid(1);
    options.usesReference = options.folders.removeAll(u"--reference"_s) > 0;
    if (options.folders.isEmpty()) {
        std::fputs("usage: velorin-vectors [--reference] FOLDER...\n", stderr);
        return 2;
    }
    const bool passed = velorin::vectors::run(velorin::vectors::allSuites(), options,
                                              [](const QByteArray& line) { std::puts(line.constData()); });
    return passed ? 0 : 1;
}
