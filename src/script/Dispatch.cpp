#include "script/Dispatch.h"

#include "script/vbscript/Errors.h"
#include "script/vbscript/Text.h"

#include <atomic>

namespace script
{

Failed fault(int number, std::u16string_view subject)
{
    auto found = make<Fault>();
    found->number = number;
    found->subject = subject;
    return Failed(std::move(found));
}

namespace
{

const void* newLayout()
{
    static std::atomic<std::uintptr_t> last{0};
    return reinterpret_cast<const void*>(++last);
}

} // namespace

HostObject::HostObject(std::u16string typeName) : m_layout(newLayout()), m_typeName(std::move(typeName)) {}

void HostObject::add(Member member)
{
    m_ids[vbscript::folded(member.name)] = static_cast<MemberId>(m_members.size()) + 1;
    m_members.push_back(std::move(member));
    // A name may mean another member from now on.
    m_layout = newLayout();
}

void HostObject::property(std::u16string_view name, Getter get, Setter set)
{
    add({std::u16string(name), std::move(get), std::move(set), {}, {}});
}

void HostObject::method(std::u16string_view name, Method method)
{
    add({std::u16string(name), {}, {}, std::move(method), {}});
}

void HostObject::writingMethod(std::u16string_view name, WritingMethod method)
{
    add({std::u16string(name), {}, {}, {}, std::move(method)});
}

std::optional<Dispatch::MemberId> HostObject::memberId(std::u16string_view name) const
{
    const auto found = m_ids.find(vbscript::folded(name));
    if (found == m_ids.end()) return std::nullopt;
    return found->second;
}

const HostObject::Member* HostObject::member(MemberId id) const
{
    if (id < 1 || id > static_cast<MemberId>(m_members.size())) return nullptr;
    return &m_members[static_cast<std::size_t>(id) - 1];
}

bool HostObject::writesArguments(MemberId id) const
{
    const Member* found = member(id);
    return found && found->write;
}

Result<Value> HostObject::invokeByReference(int locale, MemberId id, Access access,
                                            std::span<Value> arguments)
{
    const Member* found = member(id);
    const bool puts = access == Access::Put || access == Access::PutRef;
    if (found && found->write && !puts) return found->write(arguments);
    return invokeIn(locale, id, access, arguments);
}

Result<Value> HostObject::invoke(MemberId id, Access access, Arguments arguments)
{
    const Member* found = member(id);
    if (!found) return fault(vbscript::error::kNoSuchMember);
    if (access == Access::Put || access == Access::PutRef) {
        if (!found->set) return fault(vbscript::error::kNoSuchMember, found->name);
        if (arguments.size() != 1) return fault(vbscript::error::kWrongArguments, found->name);
        CHECK_RESULT(found->set(arguments.back()));
        return Value();
    }
    if (found->call) return found->call(arguments);
    if (found->write) {
        std::vector<Value> copies(arguments.begin(), arguments.end());
        return found->write(copies);
    }
    if (!found->get) return fault(vbscript::error::kNoSuchMember, found->name);
    if (!arguments.empty()) return fault(vbscript::error::kWrongArguments, found->name);
    return found->get();
}

} // namespace script
