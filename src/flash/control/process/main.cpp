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

// What the engine may have for itself. Its own budgets end a movie earlier, with a word to the user.
constexpr std::uint64_t kMemoryBytes = 900ULL << 20U;
constexpr int kWrongUsage = 2;

bool isSocket(int descriptor, int wanted)
{
    int kind = 0;
    socklen_t size = sizeof kind;
    return getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &kind, &size) == 0 && kind == wanted;
}

} // namespace

int main(int, char** words)
{
    using namespace flash::control;
    if (!isSocket(kMovieSocket, SOCK_STREAM)) {
        std::fputs("zorvex-movie is started by Zorvex, not by hand.\n", stderr);
        return kWrongUsage;
    }
    const int broker = isSocket(kBrokerSocket, SOCK_SEQPACKET) ? kBrokerSocket : -1;
    // Whatever else the player has left open is none of ours.
    close_range(broker >= 0 ? kBrokerSocket + 1 : kMovieSocket + 1, ~0U, 0);
    const auto restraints = confineEarly(kMemoryBytes);
    std::set_new_handler([] { _exit(static_cast<int>(FarExit::OutOfMemory)); });

    // Texts are drawn and measured with the machine's fonts, which only a graphical program gets; a display
    // is not needed for them.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    int none = 1;
    const QGuiApplication application(none, words);
    FarEnd movie(kMovieSocket, broker, restraints);
    return movie.run();
}
