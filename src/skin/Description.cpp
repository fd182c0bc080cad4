#include "skin/Description.h"

#include "base/Failure.h"
#include "skin/Texts.h"

#include <cmath>

namespace skin
{
namespace
{

constexpr int kTypeMismatch = 13;

[[noreturn]] void mismatch(const QString& text)
{
    throw base::Failure(kTypeMismatch, "Skin", (texts::kTypeMismatch + ('"' + text + '"')).toStdString());
}

} // namespace

QString GetAttribute(const base::xml::Element& element, const char* name, const QString& fallback)
{
    const auto found = element.attribute(name);
    return found ? QString::fromStdString(*found) : fallback;
}

ThemeAttributes ThemeAttributes::read(const base::xml::Element& element)
{
    return {GetAttribute(element, "scriptLanguage", "vbscript"), GetAttribute(element, "minWidth", "0"),
            GetAttribute(element, "minHeight", "0"), GetAttribute(element, "scriptFile", {}),
            GetAttribute(element, "scriptLibrary", {})};
}

ViewAttributes ViewAttributes::read(const base::xml::Element& element)
{
    return {GetAttribute(element, "name", kAbsent), GetAttribute(element, "onResize", {}),
            GetAttribute(element, "onInfoUpdate", {}), GetAttribute(element, "onMediaChange", {})};
}

ElementAttributes ElementAttributes::read(const base::xml::Element& element, Kind kind, bool fullScreen)
{
    const auto get = [&element](const char* name, const char* fallback) {
        return GetAttribute(element, name, fallback);
    };
    ElementAttributes a;
    a.name = get("name", kAbsent);
    a.left = get("left", "0");
    a.top = get("top", "0");
    a.width = get("width", "1");
    a.height = get("height", "1");
    a.hasHeight = element.attribute("height").has_value();
    a.visible = get("visible", "True");
    a.onClick = get("onClick", "");
    a.onDblClick = get("onDblClick", "");
    a.onDrag = get("onDrag", kind == Kind::Button || fullScreen ? "" : "MoveWindow");
    const bool isLabel = kind == Kind::Label;
    a.image = isLabel ? kAbsent : get("image", kAbsent);
    a.toolTip = isLabel ? kAbsent : get("toolTip", kAbsent);
    a.maskColor = isLabel ? kAbsent : get("maskColor", kAbsent);
    a.windowMask = kind == Kind::Panel ? get("windowMask", kAbsent) : kAbsent;
    if (!isLabel) return a;
    a.alignment = get("alignment", "0");
    a.autoSize = get("autoSize", "False");
    a.fontBold = get("fontBold", "False");
    a.fontItalic = get("fontItalic", "False");
    a.fontSize = get("fontSize", "10");
    a.foreColor = get("foreColor", "0");
    a.caption = get("caption", "");
    return a;
}

SkinColour ParseColor(const QString& text)
{
    const bool isHex = text.startsWith('#');
    bool ok = false;
    const qlonglong colour = isHex ? text.mid(1).toLongLong(&ok, 16) : text.trimmed().toLongLong(&ok);
    if (!ok || colour < INT32_MIN || colour > UINT32_MAX) mismatch(text);
    return static_cast<SkinColour>(colour) & 0xFFFFFFU;
}

bool toBoolean(const QString& text)
{
    const QString word = text.trimmed();
    if (word.compare("true", Qt::CaseInsensitive) == 0) return true;
    if (word.compare("false", Qt::CaseInsensitive) == 0) return false;
    bool ok = false;
    const double number = word.toDouble(&ok);
    if (!ok) mismatch(text);
    return number != 0;
}

int toWhole(const QString& text)
{
    bool ok = false;
    const double number = std::nearbyint(text.trimmed().toDouble(&ok));
    if (!ok || !(std::abs(number) <= INT32_MAX)) mismatch(text);
    return static_cast<int>(number);
}

} // namespace skin
