#include "base/TextCodes.h"
#include "flash/avm1/classes/Classes.h"
#include "flash/avm1/classes/XmlNode.h"
#include "flash/avm1/interpreter/Vm.h"
#include "flash/stage/StyleSheet.h"
#include "flash/stage/TextHtml.h"

#include <cstdlib>
#include <string>

// The texts that scripts hand to parsers: the HTML of fields, style sheets, XML. The first byte chooses the
// parser; for HTML a style sheet stands before it, up to a zero byte.

namespace
{

using namespace flash;

void tryHtml(std::string_view text, unsigned options)
{
    const std::size_t cut = std::min(text.find('\0'), text.size());
    stage::StyleSheet styles;
    if (auto rules = stage::StyleSheet::parse(base::utf16FromUtf8(text.substr(0, cut))))
        for (auto& rule : *rules) styles.set(rule.selector, std::move(rule.properties));
    stage::HtmlOptions how;
    how.multiline = (options & 1U) != 0;
    how.condenseWhite = (options & 2U) != 0;
    how.version = 6 + static_cast<int>(options >> 2U & 3U);
    how.styles = (options & 16U) != 0 ? &styles : nullptr;
    if (cut < text.size()) text.remove_prefix(cut + 1);
    const auto content = stage::contentFromHtml(base::utf16FromUtf8(text), {}, how);
    const std::u16string once = stage::htmlFromContent(content);
    // What a field says of itself it understands.
    stage::HtmlOptions plain;
    (void)stage::htmlFromContent(stage::contentFromHtml(once, {}, plain));
}

void tryStyles(std::string_view text, unsigned options)
{
    const auto rules =
        stage::StyleSheet::parse(base::utf16FromUtf8(text), 7 + static_cast<int>(options & 1U));
    if (!rules) return;
    for (const auto& rule : *rules) {
        stage::TextFormat format;
        bool shown = true;
        stage::StyleSheet::apply(rule.properties, format, shown);
        for (const auto& property : rule.properties) (void)stage::StyleSheet::fontNames(property.second);
    }
}

void tryXml(std::string_view text, unsigned options)
{
    avm1::NullHost host;
    avm1::Vm vm(host, &avm1::classes::installAll);
    avm1::installXml(vm);
    if ((options & 2U) != 0) vm.collectAlways();
    const avm1::Root<avm1::Object> document(vm.heap(),
                                            avm1::newXmlNode(vm, avm1::XmlNode::kElement, nullptr));
    document->define(vm, "ignoreWhite", avm1::Value((options & 1U) != 0));
    (void)avm1::parseXml(vm, document.get(), base::utf16FromUtf8(text));
    (void)avm1::xmlText(vm, document.get());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2) return 0;
    const std::string_view text(reinterpret_cast<const char*>(data) + 2, size - 2);
    switch (data[0] % 3) {
    case 0: tryHtml(text, data[1]); break;
    case 1: tryStyles(text, data[1]); break;
    default: tryXml(text, data[1]); break;
    }
    return 0;
}
