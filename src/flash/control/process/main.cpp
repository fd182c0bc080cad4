#include "flash/control/Confinement.h"
#include "flash/control/FarEnd.h"

#include <QGuiApplication>

#include <cstdio>
#include <new>
#include <sys/socket.h>
#include <unistd.h>

// The process that plays a movie for a player's window. Started by the player, which hands it a socket.

namespace
{

constexpr int kSocket = 3;
// What the engine may have for itself. Its own budgets end a movie earlier, with a word to the user.
constexpr std::uint64_t kMemoryBytes = 900ULL << 20U;
constexpr int kWrongUsage = 2;

bool isSocket(int descriptor)
{
    int kind = 0;
    socklen_t size = sizeof kind;
    return getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &kind, &size) == 0 && kind == SOCK_STREAM;
}

} // namespace

int main(int, char** words)
{
    if (!isSocket(kSocket)) {
        std::fputs("zorvex-movie is started by Zorvex, not by hand.\n", stderr);
        return kWrongUsage;
    }
    const auto restraints = flash::control::confineEarly(kMemoryBytes);
    std::set_new_handler([] { _exit(static_cast<int>(flash::control::FarExit::OutOfMemory)); });

    // Texts are drawn and measured with the machine's fonts, which only a graphical program gets; a display
    // is not needed for them.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    int none = 1;
    const QGuiApplication application(none, words);
    flash::control::FarEnd movie(kSocket, restraints);
    return movie.run();
}
