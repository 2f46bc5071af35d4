// text-target: a text field of Qt in a window of its own, to insert into.
#include <QApplication>
#include <QPlainTextEdit>

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    QPlainTextEdit field;
    field.resize(700, 300);
    field.show();
    return QApplication::exec();
}
