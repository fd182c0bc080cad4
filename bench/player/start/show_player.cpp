#include "FirstPaint.h"
#include "core/Look.h"
#include "core/StartUp.h"
#include "player/Player.h"

#include <QApplication>

/// show_player FOLDER: the program over a folder that is set up like its own.
int main(int argc, char** argv)
{
    QApplication qt(argc, argv);
    if (argc != 2) return 2;
    core::Application application;
    core::StartUp(application, QString::fromLocal8Bit(argv[1]) + "/Zorvex", {},
                  core::look::initialiseVisualStyle);
    player::Player player(application, {});
    const FirstPaint end(player);
    player.Form_Load();
    return QApplication::exec();
}
