#include "ui/HUDController.h"

#include <QApplication>

#include <gmock/gmock.h>

// Views without a screen, and signals between them: an application of its own kind.
int main(int argc, char* argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    velorin::drawViewsInSoftware();
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
