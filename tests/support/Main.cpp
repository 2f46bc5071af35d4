#include <QCoreApplication>

#include <gmock/gmock.h>

int main(int argc, char* argv[]) {
    // Main-thread tasks and timers of the code under test need an event loop.
    const QCoreApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
