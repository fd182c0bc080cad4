#include "FirstPaint.h"

#include <QApplication>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(550, 440);
    const FirstPaint end(window);
    window.show();
    return QApplication::exec();
}
