#include "flash/avm1/bindings/AmfValues.h"
#include "flash/avm1/bindings/Classes.h"

#include "base/Ascii.h"

#include <algorithm>
#include <memory>

// LocalConnection: movies that are loaded into one another call functions of objects that have taken a name.
// Nothing leaves the player. What is sent crosses over as a copy of what it says, after the scripts at hand.
namespace flash::avm1
{

namespace
{

class LocalConnectionNative final : public Native
{
public:
    static constexpr char kTag = 0;
    [[nodiscard]] const void* tag() const override { return &kTag; }
    std::u16string name; ///< that it has taken; empty: none
};

constexpr std::size_t kMaxConnections = 256;
constexpr std::size_t kMaxMessageBytes = 40 * 1024; ///< longer ones are not sent

/// @returns the name under which others find it. Those that begin with an underscore are everybody's.
std::u16string fullName(std::u16string_view name)
{
    const std::u16string lowered = base::asciiLowered(name);
    const bool isWhole = lowered.starts_with(u'_') || lowered.find(u':') != std::u16string::npos;
    return isWhole ? lowered : u"localhost:" + lowered;
}

Value construct(Call& call)
{
    if (Object* self = call.self.asObject()) self->attachNew<LocalConnectionNative>();
    return {};
}

/// @returns false for a name that is taken, and for an object that has one
Value connect(Call& call)
{
    auto* self = call.native<LocalConnectionNative>();
    const std::u16string name = textArg(call, 0);
    if (!self || name.empty() || name.find(u':') != std::u16string::npos) return Value(false);
    auto& known = StageBinding::of(call).localConnections();
    const std::u16string full = fullName(name);
    if (!self->name.empty() || known.contains(full) || known.size() >= kMaxConnections) return Value(false);
    known.emplace(full, call.self.object());
    self->name = full;
    return Value(true);
}

Value close(Call& call)
{
    auto* self = call.native<LocalConnectionNative>();
    if (!self) return {};
    StageBinding::of(call).localConnections().erase(self->name);
    self->name.clear();
    return {};
}

/// What is sent, until it arrives.
struct Message {
    Root<Object> sender;
    std::u16string receiver, method;
    int count = 0; ///< of arguments
    std::vector<std::uint8_t> args;
};

void deliver(StageBinding& binding, const Message& message)
{
    Vm& vm = binding.vm();
    const auto found = binding.localConnections().find(message.receiver);
    const bool isHeard = found != binding.localConnections().end();
    const Root<Object> receiver(vm.heap(), isHeard ? found->second : nullptr);
    // The sender hears whether anybody was there, not what became of it.
    Object* const info = vm.newObject();
    info->define(vm, "level", Value(vm.name(std::string_view(isHeard ? "status" : "error")).string()));
    binding.callHandler(message.sender.get(), "onStatus", {Value(info)});
    if (!receiver) return;
    net::AmfBytes source(message.args);
    net::AmfReader reader(source, net::AmfVersion::Amf0);
    AmfValueReader values(vm, reader);
    RootedValues args(vm.heap());
    for (int i = 0; i < message.count; ++i) {
        const auto value = values.value();
        if (!value) return;
        args.push_back(*value);
    }
    vm.callMethod(receiver.get(), vm.name(message.method), *args);
}

/// Functions and what is on the stage arrive as undefined.
bool isSent(Vm& vm, Value value)
{
    Object* object = value.asObject();
    return !object ||
           (!object->isFunction() && !vm.host().isClip(object) && !vm.host().isStageObject(object));
}

/// @returns false for what is not sent at all; whether anybody has the name is told later (onStatus)
Value send(Call& call)
{
    static constexpr std::u16string_view kReserved[] = {u"send",   u"connect",     u"close",
                                                        u"domain", u"allowdomain", u"onstatus"};
    Vm& vm = call.vm;
    StageBinding& binding = StageBinding::of(call);
    const std::u16string receiver = textArg(call, 0), method = textArg(call, 1);
    const bool isReserved = std::ranges::find(kReserved, base::asciiLowered(method)) != std::end(kReserved);
    if (!call.self.isObject() || receiver.empty() || method.empty() || isReserved) return Value(false);
    AmfValueWriter writer(vm);
    for (const Value value : call.args.subspan(2)) writer.value(isSent(vm, value) ? value : Value());
    auto args = writer.take();
    if (args.size() > kMaxMessageBytes || !binding.hasStage()) return Value(false);
    stage::ActionQueue& queue = binding.stage().queue();
    const std::size_t bytes = sizeof(Message) + args.size();
    if (!queue.takesRequest(bytes)) return Value(false);
    auto message =
        std::make_shared<Message>(Message{Root<Object>(vm.heap(), call.self.object()), fullName(receiver),
                                          method, static_cast<int>(call.count()) - 2, std::move(args)});
    queue.addRequest(
        [&binding, message, version = vm.version()] {
            if (binding.vm().isDisabled()) return;
            const Vm::VersionScope scope(binding.vm(), version);
            deliver(binding, *message);
        },
        bytes);
    return Value(true);
}

Value domain(Call& call) { return call.vm.string(std::string_view("localhost")); }

// clang-format off
constexpr MemberInfo kMembers[] = {
    {"connect", 1, kFrom6, &connect},
    {"send",    2, kFrom6, &send},
    {"close",   0, kFrom6, &close},
    {"domain",  0, kFrom6, &domain},
};
// clang-format on

} // namespace

void installLocalConnection(StageBinding& binding)
{
    binding.vm().defineClass("LocalConnection", &construct, kMembers);
}

} // namespace flash::avm1
