#include "flash/Engine.h"

#include "base/FileNames.h"
#include "base/Files.h"
#include "base/TextCodeGuess.h"
#include "flash/InnerMovie.h"
#include "flash/MovieLoader.h"
#include "flash/SoundReader.h"
#include "flash/avm1/bindings/StageBinding.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/guard/Guard.h"
#include "flash/net/FileSharedObjects.h"
#include "flash/net/LocalLoader.h"
#include "flash/net/MemorySharedObjects.h"
#include "flash/render/Canvas.h"
#include "flash/sound/SoundPlayer.h"
#include "flash/stage/Stage.h"
#include "flash/swf/Texts.h"

#include <QImage>
#include <QRect>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <new>
#include <stdexcept>
#include <utility>

namespace flash
{

namespace
{

constexpr std::uint64_t kMaxMovieBytes = 512ULL << 20;

struct Source {
    std::filesystem::path path;
    std::string url; // with the query
    std::vector<std::uint8_t> bytes;
};

/// The part up to the last "?" is the file; a file whose own name holds one is found by its address only.
base::Result<Source> readSource(const std::string& address, std::optional<std::vector<std::uint8_t>> bytes)
{
    const auto mark = address.rfind('?');
    Source source;
    source.path = Engine::pathOf(address);
    source.url = net::urlFromPath(source.path);
    if (mark != std::string::npos) source.url += address.substr(mark);
    source.bytes = bytes ? std::move(*bytes) : TRY_RESULT(base::readFile(source.path, kMaxMovieBytes));
    return source;
}

render::IntRect toRender(const QRect& rect)
{
    return {rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height()};
}

stage::HostEvents::EndCause toHost(guard::MovieEnded::Cause cause)
{
    switch (cause) {
    case guard::MovieEnded::Cause::Memory: return stage::HostEvents::EndCause::Memory;
    case guard::MovieEnded::Cause::Time: return stage::HostEvents::EndCause::Time;
    case guard::MovieEnded::Cause::Interrupted: return stage::HostEvents::EndCause::Interrupted;
    }
    return stage::HostEvents::EndCause::Memory;
}

render::Quality toRender(stage::Quality quality)
{
    switch (quality) {
    case stage::Quality::Low: return render::Quality::Low;
    case stage::Quality::Medium: return render::Quality::Medium;
    case stage::Quality::High: return render::Quality::High;
    case stage::Quality::Best: return render::Quality::Best;
    }
    return render::Quality::High;
}

} // namespace

class Engine::Private
{
public:
    Private(stage::HostEvents& events, Options given)
        : host(events), options(std::move(given)), sound([](stage::SoundOwner owner) -> stage::SoundOwner {
              return static_cast<const stage::Node*>(owner)->parent();
          })
    {
        watch.setReport([this](guard::Bound, std::string_view text) {
            host.logLine(text);
            host.limitReached(text);
        });
        makeStage(Scripts::None);
    }
    ~Private() { dropStage(); }

    /// Does what a movie may take any time and memory for.
    /// @returns false when the movie could not go on; it is closed then
    template <class Work>
    bool watched(Work&& work, guard::Guard::Work kind = guard::Guard::Work::Frames)
    {
        // What is called within, by a host for instance, leaves the rest to the outermost.
        if (guard::current() == &watch) {
            work();
            return true;
        }
        try {
            const guard::Turn turn(watch, kind);
            if (stage->movie()) watch.lookAround();
            work();
            return true;
        } catch (const guard::MovieEnded& ended) {
            endMovie(toHost(ended.cause()), ended.what());
        } catch (const std::bad_alloc&) {
            reserve.reset();
            endMovie(stage::HostEvents::EndCause::Memory, "it needs more memory than there is");
        } catch (const std::length_error&) {
            endMovie(stage::HostEvents::EndCause::Memory, "it needs more memory than there can be");
        }
        return false;
    }

    /// Leaves a closed engine, whatever state the movie is in.
    void endMovie(stage::HostEvents::EndCause cause, const std::string& why)
    {
        renewStage(std::make_unique<net::MemorySharedObjects>(), Scripts::None);
        loader.setTrusted({});
        if (!reserve) reserve.reset(new std::byte[kReserveBytes]);
        host.logLine("The movie was ended: " + why);
        watch.settle();
        host.movieEnded(cause, why);
    }

    using Bytes = std::vector<std::uint8_t>;
    base::Result<void> open(const std::string& address, std::optional<Bytes> bytes);
    base::Result<void> openLevel(int level, const std::string& address, std::optional<Bytes> bytes);

    enum class Scripts {
        None,
        Fresh,
        Second, ///< of ActionScript 3
    };

    /// Without scripts while nothing is loaded: making their classes is most of the work of a short run.
    void makeStage(Scripts scripts)
    {
        const stage::Services services{sound, loader, host, *store};
        if (scripts == Scripts::None) {
            stage = std::make_unique<stage::Stage>(services, nullptr);
            return;
        }
        if (scripts == Scripts::Second) {
            avm2::PlayerInputs inputs;
            inputs.language = options.language;
            inputs.screenWidth = options.screenWidth;
            inputs.screenHeight = options.screenHeight;
            inputs.wallClockMs = [start = options.startDateMs] { return start; };
            inputs.realTimeMs = [] {
                const auto now = std::chrono::steady_clock::now().time_since_epoch();
                return std::chrono::duration<double, std::milli>(now).count();
            };
            inputs.randomSeed = options.randomSeed;
            inputs.openOldMovie = [this](stage::Stage& outer, const stage::MoviePtr& movie,
                                         const std::string& url) {
                return openInnerMovie(outer, movie, url, oldInputs(), options.textCode);
            };
            inputs.recentSound = [this](std::span<float> left, std::span<float> right) {
                sound.mixer().recent(left, right);
            };
            inputs.playSamples = [this](std::shared_ptr<stage::SampleQueue> queue) {
                return sound.playQueue(std::move(queue));
            };
            inputs.soundPeaks = [this](stage::SoundId id) { return sound.mixer().peaks(id); };
            inputs.readSound = &soundReader;
            script3 = std::make_unique<avm2::Player>(services, std::move(inputs));
            if (options.collectAlways) script3->vm().collectAlways();
            stage = std::make_unique<stage::Stage>(services, script3.get());
            script3->attach(*stage);
            return;
        }
        script = std::make_unique<avm1::StageBinding>(services, oldInputs());
        if (options.collectAlways) script->vm().collectAlways();
        stage = std::make_unique<stage::Stage>(services, &script->events());
        script->attach(*stage);
        stage->linkage().setTextCode(base::TextCode::named(options.textCode));
    }

    [[nodiscard]] avm1::BindingInputs oldInputs() const
    {
        avm1::BindingInputs inputs;
        inputs.wallClockMs = [start = options.startDateMs] { return start; };
        inputs.realTimeMs = [] {
            const auto now = std::chrono::steady_clock::now().time_since_epoch();
            return std::chrono::duration<double, std::milli>(now).count();
        };
        inputs.randomSeed = options.randomSeed;
        inputs.language = options.language;
        inputs.screenWidth = options.screenWidth;
        inputs.screenHeight = options.screenHeight;
        return inputs;
    }

    void dropStage()
    {
        watch.setEnding(true);
        // Saving may need memory of which there is none; then what was saved before stays.
        try {
            if (script) {
                script->vm().disable(); // a getter among what is saved may never come to an end
                script->saveSharedObjects();
            }
            if (script3) {
                script3->vm().disable();
                script3->saveSharedObjects();
            }
        } catch (const std::bad_alloc&) {
            host.logLine("The shared objects were not saved: no memory");
        }
        stage->close();
        stage.reset();
        script.reset();
        script3.reset();
        sound.reset();
        watch.setEnding(false);
    }

    /// A fresh stage and fresh scripts, seen as before.
    void renewStage(std::unique_ptr<stage::SharedObjectStore> newStore, Scripts scripts)
    {
        const int width = stage->view().width(), height = stage->view().height();
        const stage::ScaleMode scaleMode = stage->view().scaleMode();
        const stage::Quality quality = stage->view().quality();
        const bool loop = stage->loop();
        dropStage();
        store = std::move(newStore);
        makeStage(scripts);
        stage->view().setSize(width, height);
        stage->view().setScaleMode(scaleMode);
        stage->view().setQuality(quality);
        stage->setLoop(loop);
        stage->view().setDeviceScale(deviceScale);
    }

    void render(QImage& image, std::span<const render::IntRect> boxes);

    [[nodiscard]] int devicePixels(std::int32_t twips) const
    {
        constexpr double kMaxPixels = 16384;
        return static_cast<int>(
            std::clamp(std::round(twips * deviceScale / swf::kTwipsPerPixel), 1.0, kMaxPixels));
    }

    static constexpr std::size_t kReserveBytes = std::size_t{4} << 20;

    stage::HostEvents& host;
    Options options;
    guard::Guard watch;
    /// Given back where memory ends, so that there is some to end the movie with. Never written to.
    std::unique_ptr<std::byte[]> reserve{new std::byte[kReserveBytes]};
    MovieLoader loader;
    std::unique_ptr<stage::SharedObjectStore> store = std::make_unique<net::MemorySharedObjects>();
    sound::SoundPlayer sound;
    std::unique_ptr<avm1::StageBinding> script; ///< null for a movie of ActionScript 3
    std::unique_ptr<avm2::Player> script3;
    std::unique_ptr<stage::Stage> stage;
    double deviceScale = 1;
    render::SecondThread secondThread = render::SecondThread::Never;
};

Engine::Engine(stage::HostEvents& host, Options options)
    : d(std::make_unique<Private>(host, std::move(options)))
{
}

Engine::~Engine() = default;

Engine::Options& Engine::options() { return d->options; }

void Engine::interrupt(Until until) noexcept
{
    d->watch.interrupt(until == Until::Ever ? guard::Guard::Until::Ever : guard::Guard::Until::NextMovie);
}

bool Engine::act(const std::function<void(stage::Stage&)>& work)
{
    return d->watched([&] { work(*d->stage); });
}

base::Result<void> Engine::open(const std::string& address, std::optional<std::vector<std::uint8_t>> bytes)
{
    d->watch.renew();
    d->watch.setMostHeld(d->options.mostHeldBytes);
    if (d->watch.isInterrupted()) return base::fail(base::ErrorCode::Denied, address + ": playing has ended");
    base::Result<void> result;
    if (!d->watched([&] { result = d->open(address, std::move(bytes)); }))
        return base::fail(base::ErrorCode::LimitReached, address + ": the movie could not go on");
    return result;
}

base::Result<void> Engine::Private::open(const std::string& address, std::optional<Bytes> bytes)
{
    Source source = TRY_RESULT(readSource(address, std::move(bytes)));
    auto movie = TRY_RESULT(swf::parseMovie(source.bytes));
    const auto& base = options.baseFolder;
    const bool trusted = liesIn(source.path, options.trustedFolder);
    loader.setFolders(base.empty() ? source.path.parent_path() : base, base,
                      trusted ? options.sharedFolder : std::filesystem::path());
    loader.setTrusted(trusted ? options.trustedFolder : std::filesystem::path());
    const auto& storage = options.storageFolder;
    std::unique_ptr<stage::SharedObjectStore> store = std::make_unique<net::MemorySharedObjects>();
    if (!storage.empty()) {
        store = std::make_unique<net::FileSharedObjects>(storageOf(storage, source.path));
    }
    renewStage(std::move(store), movie->isAs3 ? Private::Scripts::Second : Private::Scripts::Fresh);
    constexpr int kFirstUnicodeVersion = 6;
    if (options.textCode == Options::kAutomaticTextCode && movie->header.version < kFirstUnicodeVersion)
        stage->linkage().setTextCode(base::TextCode::named(base::guessTextCode(swf::textsOf(*movie))));
    if (stage->view().width() == 0) {
        const swf::Rect& frame = movie->header.frameSize;
        stage->view().setSize(devicePixels(frame.width()), devicePixels(frame.height()));
        stage->view().setScreenSize(options.screenWidth, options.screenHeight);
    }
    sound.setFrameRate(movie->header.frameRate);
    constexpr double kMsPerSecond = 1000;
    watch.setScriptTime(std::chrono::seconds(std::min<int>(movie->scriptTimeoutSeconds, 60)));
    if (script)
        script->vm().setLimits(movie->scriptMaxRecursion, movie->scriptTimeoutSeconds * kMsPerSecond);
    else
        script3->vm().setLimits(movie->scriptTimeoutSeconds * kMsPerSecond);
    stage->open(std::move(movie), source.url);
    return {};
}

base::Result<void> Engine::openLevel(int level, const std::string& address,
                                     std::optional<std::vector<std::uint8_t>> bytes)
{
    if (level == 0) return open(address, std::move(bytes));
    base::Result<void> result;
    if (!d->watched([&] { result = d->openLevel(level, address, std::move(bytes)); }))
        return base::fail(base::ErrorCode::LimitReached, address + ": the movie could not go on");
    return result;
}

base::Result<void> Engine::Private::openLevel(int level, const std::string& address,
                                              std::optional<Bytes> bytes)
{
    Source source = TRY_RESULT(readSource(address, std::move(bytes)));
    // Read here to tell the host at once what is wrong with it; the stage reads it again when it comes.
    CHECK_RESULT(swf::parseMovie(source.bytes).map([](const auto&) {}));
    loader.grant(source.url, std::move(source.bytes));
    stage->loads().intoLevel(level, {source.url, {}, stage::LoadRequest::Method::None, {}});
    return {};
}

void Engine::close()
{
    d->watched([&] { d->renewStage(std::make_unique<net::MemorySharedObjects>(), Private::Scripts::None); });
}

bool Engine::holdsOnlyTrusted() const { return d->loader.holdsOnlyTrusted(); }
bool Engine::hasReadFiles() const { return d->loader.hasReadFiles(); }
bool Engine::isOpen() const { return d->stage->movie() != nullptr; }

void Engine::advance(double ms, SoundPace clock)
{
    d->watched([&] {
        // Sound first: a block that begins with a frame of this step sounds from the end of the step on.
        if (clock == SoundPace::Simulated) d->sound.advance(ms);
        d->stage->advance(ms);
    });
}

stage::Stage& Engine::stage() { return *d->stage; }
const stage::Stage& Engine::stage() const { return *d->stage; }
sound::SoundPlayer& Engine::sound() { return d->sound; }
stage::CursorPicturePtr Engine::cursorPicture() const
{
    return d->script3 ? d->script3->cursorPicture() : nullptr;
}

void Engine::setSecondThread(render::SecondThread when) { d->secondThread = when; }

void Engine::setDeviceScale(double scale)
{
    d->deviceScale = scale;
    d->stage->view().setDeviceScale(scale);
}

std::vector<QRect> Engine::dirtyRects()
{
    std::vector<QRect> rects;
    d->watched([&] {
        for (const render::IntRect& box : d->stage->view().dirtyBoxes())
            rects.emplace_back(box.left, box.top, box.width(), box.height());
    });
    return rects;
}

void Engine::render(QImage& image, const std::vector<QRect>& rects)
{
    std::vector<render::IntRect> boxes;
    for (const QRect& rect : rects)
        if (const QRect visible = rect & image.rect(); !visible.isEmpty()) boxes.push_back(toRender(visible));
    if (boxes.empty()) return;
    d->watched([&] { d->render(image, boxes); }, guard::Guard::Work::Drawing);
}

void Engine::Private::render(QImage& image, std::span<const render::IntRect> boxes)
{
    const render::SurfaceView view{reinterpret_cast<std::uint32_t*>(image.bits()), image.width(),
                                   image.height(), image.bytesPerLine() / 4};
    stage->view().renderCache().setSecondThread(secondThread);
    render::Canvas canvas(view, toRender(stage->view().quality()), stage->view().renderCache());
    // Each by itself is a frame to whoever draws it in bands.
    for (const render::IntRect& box : boxes) {
        canvas.beginFrame();
        stage->view().render(canvas, box);
        canvas.endFrame();
    }
}

std::string Engine::getVariable(const std::string& path)
{
    std::string value;
    d->watched([&] { value = d->stage->script().hostVariable(path).value_or(std::string()); });
    return value;
}

void Engine::setVariable(const std::string& path, const std::string& value)
{
    d->watched([&] { d->stage->script().setHostVariable(path, value); });
}

} // namespace flash
