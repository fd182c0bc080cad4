#include "flash/FlashControlPrivate.h"

#include <QDateTime>
#include <QLocale>

#include <filesystem>

// Which process a movie plays in, and what it is told at its start.
namespace flash
{

control::Load FlashControl::Private::loadOf(int layer, const QString& url)
{
    control::Load load;
    load.id = ++lastLoad;
    load.layer = layer;
    load.address = url.toStdString();
    load.language = QLocale().name().left(2).toStdString();
    load.startDateMs = static_cast<double>(QDateTime::currentMSecsSinceEpoch());
    load.randomSeed = static_cast<std::uint32_t>(QDateTime::currentMSecsSinceEpoch());
    if (const QScreen* shownOn = q.screen()) {
        load.screenWidth = shownOn->size().width();
        load.screenHeight = shownOn->size().height();
    }
    load.storageFolder = storageFolder.toStdString();
    load.textCode = textCode.toStdString();
    sources[load.id] = {url, isPage(url)};
    // Nobody else is even told of these folders.
    if (sources[load.id].isPage) {
        load.trustedFolder = trustedFolder.toStdString();
        load.sharedFolder = sharedFolder.toStdString();
    }
    return load;
}

bool FlashControl::Private::loadMovie(const QString& url)
{
    lacksProcess = false;
    startsLeft = kMaxStarts;
    early.clear();
    if (mayTakeOver(url)) {
        using State = control::MoviePort::Loading::State;
        ++takenOver;
        const State state = loadInto(0, url, control::RemoteMovie::patienceMs());
        if (state != State::NoProcess) return state != State::Failed;
    }
    if (FlashControl::givesOwnProcesses()) return loadIntoProcess(url, control::RemoteMovie::patienceMs());
    if (!std::exchange(toldWhere, true))
        heard(control::LogLine{"Movies play inside this process: there is none for them."});
    if (isRemote) newLocal();
    return loadInto(0, url, 0) == control::MoviePort::Loading::State::Done;
}

bool FlashControl::Private::mayTakeOver(const QString& url) const
{
    // What movies leave behind, in memory above all, comes to an end.
    constexpr int kMaxTakenOver = 24;
    const auto folderOf = [](const QString& of) {
        return Engine::pathOf(of.toStdString()).lexically_normal().parent_path();
    };
    return keepsProcess && isRemote && !hasLost && !loading && !port->isBehind() && !movie.isEmpty() &&
           takenOver < kMaxTakenOver && !isPage(url) && !isPage(movie) && storageFolder.isEmpty() &&
           folderOf(url) == folderOf(movie);
}

bool FlashControl::Private::loadIntoProcess(const QString& url, int patienceMs)
{
    using State = control::MoviePort::Loading::State;
    QElapsedTimer taken;
    taken.start();
    while (startsLeft > 0) {
        --startsLeft;
        auto process = processes->take();
        if (process == nullptr) continue;
        auto before = std::move(port);
        const bool wasRemote = std::exchange(isRemote, true);
        const std::uint32_t spokeBefore = std::exchange(speaking, 0);
        port = std::make_unique<control::RemoteMovie>(*this, std::move(process));
        hasLost = false;
        takenOver = 0;
        equip(*port);
        const State state = loadInto(0, url, std::max(0, patienceMs - static_cast<int>(taken.elapsed())));
        if (state == State::Done || state == State::GoesOn) {
            QTimer::singleShot(kSpareDelayMs, &q, [this] { processes->prepare(); });
            return true;
        }
        port = std::move(before);
        isRemote = wasRemote;
        speaking = spokeBefore;
        if (state == State::Failed) return false;
    }
    lacksProcess = true;
    error = QStringLiteral("no process can be started for the movie; with ZORVEX_ONE_PROCESS=1 movies play "
                           "inside the player, unconfined");
    return false;
}

bool FlashControl::Private::loadAgain(const QString& url)
{
    const auto said = early;
    if (!loadIntoProcess(url, 0)) return false;
    for (const control::ToMovie& message : said) port->command(message);
    return true;
}

control::MoviePort::Loading::State FlashControl::Private::loadInto(int layer, const QString& url,
                                                                   int patienceMs)
{
    using State = control::MoviePort::Loading::State;
    const auto loading = port->load(loadOf(layer, url), patienceMs);
    if (loading.state != State::Done && loading.state != State::GoesOn) {
        error = QString::fromStdString(loading.error);
        return loading.state;
    }
    error.clear();
    if (layer == 0) {
        forgetMenu();
        movieLoad = lastLoad;
        this->loading = loading.state == State::GoesOn;
        sources = {{lastLoad, sources.value(lastLoad)}};
        movie = url;
        background.reset();
    }
    return loading.state;
}

bool FlashControl::Private::loadLayer(int layer, const QString& url)
{
    if (isRemote && isPage(url) != sources.value(speaking).isPage) {
        error = QStringLiteral("pages and movies do not share a process");
        return false;
    }
    using State = control::MoviePort::Loading::State;
    const State state = loadInto(layer, url, control::RemoteMovie::patienceMs());
    return state == State::Done || state == State::GoesOn;
}

bool FlashControl::Private::isPage(const QString& url) const
{
    std::error_code error;
    const auto file = std::filesystem::canonical(Engine::pathOf(url.toStdString()), error);
    return !error && !trustedFolder.isEmpty() &&
           std::filesystem::equivalent(file.parent_path(), trustedFolder.toStdString(), error);
}

} // namespace flash
