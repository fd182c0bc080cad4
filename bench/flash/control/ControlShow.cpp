#include "flash/FlashControl.h"

#include <QApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("control_show MOVIE\n", stderr);
        return 2;
    }
    flash::FlashControl control;
    if (!control.LoadMovie(0, QString::fromLocal8Bit(argv[1]))) {
        std::fprintf(stderr, "%s\n", control.errorText().toLocal8Bit().constData());
        return 1;
    }
    control.resize(control.movieSize());
    control.show();
    return QApplication::exec();
}
