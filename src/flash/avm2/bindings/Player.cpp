#include "flash/avm2/bindings/Player.h"

#include "flash/avm2/bindings/Context3D.h"

#include "flash/avm2/abc/Abc.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/Loader.h"
#include "flash/avm2/classes/ByteArray.h"
#include "flash/avm2/classes/Library.h"

#include <algorithm>

namespace flash::avm2
{

namespace
{

std::vector<NativeLibrary> allLibraries()
{
    std::vector<NativeLibrary> all;
    for (const NativeLibrary& library : classes::library()) all.push_back(library);
    for (const NativeLibrary& library : bindingsLibrary()) all.push_back(library);
    return all;
}

} // namespace

Player::Player(stage::Services services, PlayerInputs inputs)
    : m_services(services), m_inputs(std::move(inputs)), m_vm(std::make_unique<Vm>(*this, allLibraries())),
      m_stageObject(m_vm->heap()), m_random(m_inputs.randomSeed)
{
    m_vm->binding = this;
    m_input = std::make_unique<Input>(*this, m_vm->heap());
    m_menus = std::make_unique<ContextMenus>(*this, m_vm->heap());
    m_vm->heap().addRootSource([this](Tracer& tracer) {
        if (m_movies.empty()) return;
        const LoadedMovie& main = *m_movies.front();
        tracer(main.domain);
        tracer(main.root);
        tracer(main.loaderInfo);
        for (const auto& [id, cls] : main.symbols) tracer(cls);
    });
    m_vm->heap().addSweepHook([this] { forgetGone(); });
}

/// What is no longer marked is about to be freed.
void Player::forgetGone()
{
    const auto isGone = [](const Cell* cell) { return cell != nullptr && !Heap::isMarked(cell); };
    for (auto& [type, hearers] : m_listening) hearers.forget(isGone);
    std::erase_if(m_weaklyHeard,
                  [&](DispatcherObject* object) { return isGone(object) || !object->dropGoneListeners(); });
    std::erase_if(m_orphans, isGone);
    std::erase_if(m_allStreams, isGone);
    std::erase_if(m_monitors, isGone);
    std::erase_if(m_linked, [&](const auto& entry) { return isGone(entry.first); });
    for (const auto& movie : m_movies) {
        if (isGone(movie->domain)) movie->domain = nullptr;
        if (isGone(movie->root)) movie->root = nullptr;
        if (isGone(movie->loaderInfo)) movie->loaderInfo = nullptr;
        std::erase_if(movie->symbols, [&](const auto& entry) { return isGone(entry.second); });
    }
    std::erase_if(m_movies, [this](const auto& movie) { return isForgotten(*movie); });
}

/// What has been taken off the stage goes on with every frame until it is freed: it must not become much. A
/// collection within a frame keeps whatever the frame is being told to, which may be most of it.
void Player::collectIfDue()
{
    constexpr std::size_t kManyOrphans = 500;
    Heap& heap = m_vm->heap();
    const bool keptSome = heap.collections() != m_seenCollections && !m_orphans.empty();
    if (!heap.shouldCollect() && !keptSome && m_orphans.size() <= 2 * m_keptOrphans + kManyOrphans) return;
    heap.collect();
    m_keptOrphans = m_orphans.size();
    m_seenCollections = heap.collections();
}

/// Nothing of a movie that was loaded is shown any more, and no class is left to make it from.
bool Player::isForgotten(const LoadedMovie& movie) const
{
    return &movie != m_movies.front().get() && movie.root == nullptr && movie.movie.use_count() == 1 &&
           std::ranges::none_of(m_linked, [&](const auto& entry) { return entry.second.first == &movie; });
}

Player::~Player()
{
    m_vm->disable();
    m_timers.clear();
    m_localConnections.clear();
    m_sharedObjects.clear();
    m_sounds.clear();
    m_madeSounds.clear();
    m_streams.clear();
    m_input.reset();
    m_menus.reset();
    m_later.clear();
    m_linked.clear();
    m_movies.clear();
}

/// The breaks of text fields are ends of lines here, too.
void Player::trace(std::u16string_view text)
{
    std::u16string shown(text);
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const bool isLone = shown[i] == u'\r' && (i + 1 == shown.size() || shown[i + 1] != u'\n');
        if (isLone) shown[i] = u'\n';
    }
    m_services.host.traceLine(toUtf8(shown));
}
void Player::log(std::string_view text) { m_services.host.logLine(text); }
void Player::uncaught(std::u16string_view text) { m_services.host.logLine(toUtf8(text)); }

std::uint32_t Player::random()
{
    m_random ^= m_random << 13U;
    m_random ^= m_random >> 17U;
    m_random ^= m_random << 5U;
    return m_random;
}

bool Player::askToStopScript(double) { return m_services.host.abortSlowScript(); }

std::u16string Player::nextInstanceName() { return u"instance" + numberText(m_nextInstance++); }

LoadedMovie* Player::loaded(const stage::MoviePtr& movie)
{
    const auto found =
        std::ranges::find_if(m_movies, [&](const auto& entry) { return entry->movie == movie; });
    return found != m_movies.end() ? found->get() : nullptr;
}

LoadedMovie& Player::addMovie(stage::MoviePtr movie, std::string url, Domain* domain)
{
    m_movies.push_back(std::make_unique<LoadedMovie>(std::move(movie), std::move(url), domain));
    LoadedMovie& added = *m_movies.back();
    // What is read of a movie takes several times its size.
    constexpr std::size_t kMemoryToFile = 4;
    m_vm->heap().noteExternalBytes(kMemoryToFile * added.movie->bytes.size());
    loadScripts(added, 0);
    return added;
}

void Player::loadScripts(LoadedMovie& movie, std::size_t frame)
{
    while (movie.loadedFrames <= frame) readFrameScripts(movie, movie.loadedFrames++);
}

void Player::readFrameScripts(LoadedMovie& movie, std::size_t frame)
{
    RootedList<Unit*> eager(m_vm->heap());
    for (const swf::ScriptTags::Block& block : movie.tags.blocks) {
        if (block.frame != frame) continue;
        auto parsed = abc::parseAbc(block.bytes);
        if (!parsed) {
            m_services.host.logLine(parsed.error().what);
            continue;
        }
        m_vm->guarded([&] {
            if (movie.domain == nullptr) return; // its frames go on, without a class of its own
            Unit* unit = movie.domain->load(*m_vm, *parsed, movie.movie->header.version);
            if (!block.lazy) eager.push_back(unit);
        });
    }
    for (const swf::ScriptTags::Symbol& symbol : movie.tags.symbols) {
        if (symbol.frame != frame) continue;
        m_vm->guarded([&] {
            Value found;
            if (movie.domain == nullptr) return;
            if (!movie.domain->lookUp(*m_vm, fromUtf8(symbol.className), found)) {
                m_services.host.logLine("No class " + symbol.className);
                return;
            }
            auto* cls = as<ClassObject>(found);
            if (cls == nullptr) return;
            // One for a character that there is none of is the movie's own.
            const bool known = movie.movie->character(symbol.characterId) != nullptr;
            const auto binary = movie.tags.binaries.find(symbol.characterId);
            const bool isShown =
                cls->instances->isA(m_vm->nativeClass("flash.display::DisplayObject")->instances);
            const std::uint16_t id =
                known || !isShown || binary != movie.tags.binaries.end() ? symbol.characterId : 0;
            if (!movie.symbols.try_emplace(id, cls).second || id == 0) return;
            m_linked.try_emplace(cls, &movie, id);
            if (binary != movie.tags.binaries.end()) cls->allocate = &allocateBinary;
        });
    }
    // What the frame's symbols are linked to has come first, with the scripts that it is in.
    for (std::size_t i = 0; i < eager.size(); ++i) m_vm->guarded([&] { eager[i]->runAllScripts(*m_vm); });
}

/// An array of bytes that the file holds.
Object* Player::allocateBinary(Vm& vm, ClassObject& cls)
{
    auto* made = vm.heap().make<classes::ByteArrayObject>(cls.instances, cls.prototype);
    const Player& player = of(vm);
    for (const ClassObject* at = &cls; at != nullptr; at = at->base) {
        const auto found = player.m_linked.find(at);
        if (found == player.m_linked.end()) continue;
        const auto& binaries = found->second.first->tags.binaries;
        if (const auto bytes = binaries.find(found->second.second); bytes != binaries.end())
            made->content.assign(bytes->second.begin(), bytes->second.end());
        break;
    }
    return made;
}

ClassObject* Player::classOf(const stage::MoviePtr& movie, std::uint16_t characterId)
{
    if (const LoadedMovie* known = loaded(movie)) {
        // A picture's class may be one of its pixels; what shows them is the player's.
        ClassObject* cls = known->classOf(characterId);
        const Traits* pixels = m_vm->nativeClass("flash.display::BitmapData")->instances;
        if (cls != nullptr && !cls->instances->isA(pixels)) return cls;
    }
    const swf::Character* character = movie->character(characterId);
    if (character == nullptr) return nullptr;
    const char* name = "flash.display::Shape";
    if (std::holds_alternative<swf::Sprite>(character->data))
        name = "flash.display::MovieClip";
    else if (std::holds_alternative<swf::Button>(character->data))
        name = "flash.display::SimpleButton";
    else if (std::holds_alternative<swf::EditText>(character->data))
        name = "flash.text::TextField";
    else if (std::holds_alternative<swf::StaticText>(character->data))
        name = "flash.text::StaticText";
    else if (std::holds_alternative<swf::MorphCharacter>(character->data))
        name = "flash.display::MorphShape";
    else if (std::holds_alternative<swf::BitmapCharacter>(character->data))
        name = "flash.display::Bitmap";
    else if (std::holds_alternative<swf::VideoStream>(character->data))
        name = "flash.media::Video";
    else if (!std::holds_alternative<swf::ShapeCharacter>(character->data))
        return nullptr;
    return m_vm->nativeClass(name);
}

std::uint16_t Player::characterOf(const ClassObject* cls, stage::MoviePtr& movie)
{
    for (const ClassObject* at = cls; at != nullptr && !m_linked.empty(); at = at->base) {
        const auto found = m_linked.find(at);
        if (found == m_linked.end()) continue;
        movie = found->second.first->movie;
        return found->second.second;
    }
    return 0;
}

void Player::begin()
{
    m_hasBegun = true;
    const stage::MoviePtr movie = m_stage->movie();
    if (!movie) return;
    m_vm->version = movie->header.version;
    m_vm->guarded([&] {
        auto* stage = as<DisplayObject>(Value(m_vm->instantiate(m_vm->nativeClass("flash.display::Stage"))));
        m_stageObject = stage;
        stage->setNode(m_stage->root()->shared_from_this());
        stage->isStage = stage->isConstructed = true;
        setReadOnly(*m_vm, *stage, "stage3Ds", newStage3Ds(*m_vm));
        ClassObject* videos = m_vm->vectorOf(m_vm->nativeClass("flash.media::StageVideo")->instances);
        setReadOnly(*m_vm, *stage, "stageVideos", m_vm->construct(Value(videos), {}));
    });
    if (!m_stageObject) return;
    Domain* domain = m_vm->heap().make<Domain>(m_vm->systemDomain());
    m_vm->movieDomain = domain;
    LoadedMovie& main = addMovie(movie, m_stage->url(), domain);
    m_vm->guarded([&] {
        LoaderInfoObject* info = newLoaderInfo(*m_vm, main.url);
        main.loaderInfo = info;
        m_vm->offerUncaught = [this](Value error) {
            const LoadedMovie* movie = mainMovie();
            const auto* known = movie == nullptr ? nullptr : as<LoaderInfoObject>(Value(movie->loaderInfo));
            return known != nullptr && avm2::offerUncaught(*m_vm, *known, error);
        };
        // The stage has one of its own.
        LoaderInfoObject* ofStage = newLoaderInfo(*m_vm, main.url);
        ofStage->contentType = Value::null();
        m_stageObject->loaderInfo = Value(ofStage);
    });
    m_vm->guarded([&] {
        if (makeRoot(main, m_stageObject.get()) == nullptr) return;
        announce(*main.root, "added", Within::Untold);
    });
}

DisplayObject* Player::makeRoot(LoadedMovie& movie, DisplayObject* parent)
{
    ClassObject* cls = movie.classOf(0);
    if (cls == nullptr) cls = m_vm->nativeClass("flash.display::MovieClip");
    auto* root = as<DisplayObject>(Value(m_vm->instantiate(cls)));
    if (root == nullptr) {
        m_services.host.logLine("The class of the movie is none of a display object");
        return nullptr;
    }
    movie.root = root;
    root->isRoot = true;
    root->movie = movie.movie;
    root->name =
        Value(m_vm->string(parent == m_stageObject.get() ? std::u16string(u"root1") : nextInstanceName()));
    root->timeline = std::shared_ptr<const swf::Timeline>(movie.movie, &movie.movie->timeline);
    if (root->clip() != nullptr) root->clip()->setTimeline(movie.movie, root->timeline);
    if (movie.loaderInfo == nullptr) movie.loaderInfo = newLoaderInfo(*m_vm, movie.url);
    auto* info = as<LoaderInfoObject>(Value(movie.loaderInfo));
    info->kind = LoaderInfoObject::Content::Movie;
    info->movie = movie.movie;
    info->domain = movie.domain;
    info->content = root;
    info->loaded = info->total = static_cast<double>(movie.movie->fileLength > 0 ? movie.movie->fileLength
                                                                                 : movie.movie->bytes.size());
    root->loaderInfo = Value(info);
    if (auto* ofStage = parent != nullptr ? as<LoaderInfoObject>(parent->loaderInfo) : nullptr) {
        ofStage->kind = info->kind;
        ofStage->movie = info->movie;
        ofStage->domain = info->domain;
        ofStage->content = root;
        ofStage->loaded = ofStage->total = info->total;
    }
    if (parent != nullptr) parent->insertChild(*root, parent->children.size());
    showFrame(*root, 1);
    root->isConstructed = root->isConstructing = true;
    if (cls->constructor != nullptr) m_vm->guarded([&] { m_vm->invoke(*cls->constructor, Value(root), {}); });
    root->isConstructing = false;
    return root;
}

double Player::nextTimerMs()
{
    return m_dueTimers.empty() ? -1 : std::max(0.0, m_dueTimers.begin()->first - timeMs());
}

void Player::runTimers(double nowMs)
{
    constexpr int kMaxAtOnce = 1000;
    for (int i = 0; i < kMaxAtOnce && !m_vm->isDisabled(); ++i) {
        if (m_dueTimers.empty() || m_dueTimers.begin()->first > nowMs) return;
        const std::uint32_t id = m_dueTimers.begin()->second;
        Timer& due = *m_timers.at(id);
        Root<Object> function(m_vm->heap(), due.function.get());
        RootedList<Value> args(m_vm->heap(), due.args.begin(), due.args.end());
        if (due.repeats) {
            m_dueTimers.erase(m_dueTimers.begin());
            due.dueMs += std::max(1.0, due.everyMs);
            m_dueTimers.emplace(due.dueMs, id);
        } else {
            removeTimer(id);
        }
        m_vm->guarded([&] { m_vm->call(Value(function.get()), Value(), std::span<const Value>(*args)); });
    }
}

std::uint32_t Player::addTimer(Value function, std::span<const Value> args, double everyMs, bool repeats)
{
    constexpr std::size_t kMaxTimers = 1000;
    if (m_timers.size() >= kMaxTimers) return 0;
    auto timer =
        std::make_unique<Timer>(Timer{Root<Object>(m_vm->heap(), function.asObject()),
                                      RootedList<Value>(m_vm->heap(), args.begin(), args.end()),
                                      timeMs() + (everyMs > 0 ? everyMs : 0), everyMs, m_nextTimer, repeats});
    m_dueTimers.emplace(timer->dueMs, m_nextTimer);
    m_timers[m_nextTimer] = std::move(timer);
    return m_nextTimer++;
}

void Player::removeTimer(std::uint32_t id)
{
    const auto found = m_timers.find(id);
    if (found == m_timers.end()) return;
    m_dueTimers.erase({found->second->dueMs, id});
    m_timers.erase(found);
}

void Player::setHostVariable(std::string_view path, std::string_view /*value*/)
{
    m_services.host.logLine("SetVariable " + std::string(path) +
                            ": a movie of ActionScript 3 has no variables that can be set from outside");
}

void Player::movieReplaced()
{
    m_timers.clear();
    m_dueTimers.clear();
    closeMenu();
}

} // namespace flash::avm2
