#include "script/Dispatch.h"

#include "script/vbscript/Text.h"

namespace script
{

Failed fault(int number, std::u16string_view subject)
{
    auto found = make<Fault>();
    found->number = number;
    found->subject = subject;
    return Failed(std::move(found));
}

void HostObject::property(std::u16string_view name, Getter get, Setter set)
{
    m_ids[vbscript::folded(name)] = static_cast<MemberId>(m_members.size()) + 1;
    m_members.push_back({std::u16string(name), std::move(get), std::move(set), {}});
}

void HostObject::method(std::u16string_view name, Method method)
{
    m_ids[vbscript::folded(name)] = static_cast<MemberId>(m_members.size()) + 1;
    m_members.push_back({std::u16string(name), {}, {}, std::move(method)});
}

std::optional<Dispatch::MemberId> HostObject::memberId(std::u16string_view name) const
{
    const auto found = m_ids.find(vbscript::folded(name));
    if (found == m_ids.end()) return std::nullopt;
    return found->second;
}

Result<Value> HostObject::invoke(MemberId id, Access access, Arguments arguments)
{
    if (id < 1 || id > static_cast<MemberId>(m_members.size())) return fault(438);
    const Member& member = m_members[static_cast<std::size_t>(id) - 1];
    if (access == Access::Put || access == Access::PutRef) {
        if (!member.set) return fault(438, member.name);
        if (arguments.size() != 1) return fault(450, member.name);
        CHECK_RESULT(member.set(arguments.back()));
        return Value();
    }
    if (member.call) return member.call(arguments);
    if (!member.get) return fault(438, member.name);
    if (!arguments.empty()) return fault(450, member.name);
    return member.get();
}

} // namespace script
