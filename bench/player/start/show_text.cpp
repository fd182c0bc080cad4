#include "FirstPaint.h"

#include <QApplication>
#include <QLabel>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QLabel window("Zorvex");
    window.resize(550, 440);
    const FirstPaint end(window);
    window.show();
    return QApplication::exec();
}
