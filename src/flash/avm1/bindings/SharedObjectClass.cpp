#include "flash/avm1/bindings/Classes.h"
#include "flash/avm1/bindings/StoredValues.h"
#include "flash/avm1/classes/ClassTable.h"

#include "base/TextCodes.h"
#include "flash/guard/Guard.h"
#include "flash/net/SharedObjectFile.h"

// SharedObject: what a movie keeps on the machine. Those of servers do not exist.
namespace flash::avm1
{

namespace
{

constexpr std::uint16_t kFixed = kDontEnum | kDontDelete | kReadOnly;

class SharedObjectNative final : public Native
{
public:
    static constexpr char kTag = 0;
    explicit SharedObjectNative(std::string key) : key(std::move(key)) {}
    [[nodiscard]] const void* tag() const override { return &kTag; }
    std::string key; ///< what the store knows it by
};

Object* dataOf(Vm& vm, Object* shared)
{
    return shared->get(vm, vm.name(std::string_view("data"))).asObject();
}

std::vector<std::uint8_t> contentOf(Vm& vm, Object* shared)
{
    Object* data = dataOf(vm, shared);
    const auto* native = shared->native<SharedObjectNative>();
    if (!data || !native) return {};
    const std::string key = native->key; // accessors of the data may let go of the object
    return encodeStored(vm, data, net::sharedObjectName(key));
}

bool isEmpty(Vm& vm, Object* shared)
{
    Object* data = dataOf(vm, shared);
    return !data || data->enumerate(vm).empty();
}

Value getLocal(Call& call)
{
    StageBinding& binding = StageBinding::of(call);
    Vm& vm = call.vm;
    const std::string name = call.count() > 0 ? utf8Arg(call, 0) : std::string();
    std::optional<std::string> folder;
    if (call.count() > 1 && !call.arg(1).isNullish()) folder = utf8Arg(call, 1);
    const auto asked = net::sharedObjectKey(name, folder, binding.stage().url());
    if (!asked) return Value::null();
    const std::string& key = *asked;
    auto& known = binding.sharedObjects();
    if (const auto found = known.find(key); found != known.end()) return Value(found->second);
    if (known.size() >= guard::kMaxSharedObjects) {
        guard::refuse(guard::Bound::SharedObjects, "The movie asks for too many shared objects");
        return Value::null();
    }
    Object* constructor = vm.global()->get(vm, vm.name(std::string_view("SharedObject"))).asObject();
    if (!constructor) return Value::null();
    Object* shared = vm.newObject(vm.prototypeOf(constructor));
    shared->attachNew<SharedObjectNative>(key);
    Object* data = vm.newLiteral();
    shared->define(vm, "data", Value(data), kFixed);
    known.emplace(key, shared);
    const auto bytes = binding.services().sharedObjects.read(key);
    if (!bytes.empty()) {
        const auto read = decodeStored(vm, data, bytes);
        if (!read) binding.services().host.logLine("SharedObject " + key + ": " + read.error().what);
    }
    return Value(shared);
}

Value getRemote(Call& call)
{
    StageBinding::of(call).services().host.logLine("SharedObject.getRemote is not supported");
    return Value::null();
}

Value flush(Call& call)
{
    Object* self = call.self.asObject();
    const auto* native = self ? self->native<SharedObjectNative>() : nullptr;
    if (!native) return {};
    return Value(
        StageBinding::of(call).services().sharedObjects.write(native->key, contentOf(call.vm, self)));
}

Value getSize(Call& call)
{
    Object* self = call.self.asObject();
    if (!self || !self->native<SharedObjectNative>()) return {};
    return Value(isEmpty(call.vm, self) ? 0 : static_cast<int>(contentOf(call.vm, self).size()));
}

Value clear(Call& call)
{
    Object* self = call.self.asObject();
    const auto* native = self ? self->native<SharedObjectNative>() : nullptr;
    if (!native) return {};
    if (Object* data = dataOf(call.vm, self))
        for (const Name name : data->enumerate(call.vm)) data->remove(call.vm, name);
    StageBinding::of(call).services().sharedObjects.remove(native->key);
    return {};
}

Value nothing(Call&) { return {}; }
/// For all objects under an address; the player answers for its own movies only, one by one.
Value deleteAll(Call&) { return {}; }
Value getDiskUsage(Call&) { return {}; }

// clang-format off
constexpr MemberInfo kMembers[] = {
    {"connect", 0, kFrom6, &nothing, 0},
    {"send",    0, kFrom6, &nothing, 1},
    {"flush",   0, kFrom6, &flush,   2},
    {"close",   0, kFrom6, &nothing, 3},
    {"getSize", 0, kFrom6, &getSize, 4},
    {"setFps",  0, kFrom6, &nothing, 5},
    {"clear",   0, kFrom6, &clear,   6},
};
constexpr LibraryFunction kStaticMembers[] = {
    {"getLocal",     Written::Script, 0,         &getLocal},
    {"getRemote",    Written::Script, 0,         &getRemote},
    {"deleteAll",    Written::Script, kDontEnum, &deleteAll},
    {"getDiskUsage", Written::Script, kDontEnum, &getDiskUsage},
};
// clang-format on

constexpr int kNativeTable = 2106;

} // namespace

void installSharedObject(StageBinding& binding)
{
    Vm& vm = binding.vm();
    Function* constructor = vm.defineClass("SharedObject", &nothing, kMembers, 0, kNativeTable);
    defineFunctions(vm, constructor, kStaticMembers);
    // What the functions in script call.
    vm.registerNative(kNativeTable, 202, &getLocal);
    vm.registerNative(kNativeTable, 203, &getRemote);
    vm.registerNative(kNativeTable, 204, &deleteAll);
    vm.registerNative(kNativeTable, 205, &getDiskUsage);
}

void StageBinding::saveSharedObjects()
{
    bool told = false;
    for (const auto& [key, shared] : sharedObjects()) {
        if (isEmpty(*m_vm, shared)) continue;
        const auto content = contentOf(*m_vm, shared);
        if (content == m_services.sharedObjects.read(key)) continue;
        if (m_services.sharedObjects.write(key, content)) continue;
        if (!told) m_services.host.logLine("SharedObject " + key + ": cannot be kept");
        told = true; // the others for the same reason, most likely
    }
}

} // namespace flash::avm1
