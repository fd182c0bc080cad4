#pragma once

#include "base/xml/Xml.h"
#include "skin/Region.h"

#include <QString>

namespace skin
{

// The attributes of a skin's description with their defaults, as texts: what they are converted to, and when,
// is the builder's affair. Attribute names are matched exactly, element names without regard to case.

/// Stands for a name, image, tool tip or mask that is not given; a skin may write it as well.
inline constexpr const char* kAbsent = "| no |";

enum class Kind { View = 0, Panel = 1, Button = 2, Label = 3 };

struct ThemeAttributes {
    QString scriptLanguage, minWidth, minHeight, scriptFile, scriptLibrary;
    static ThemeAttributes read(const base::xml::Element& element);
};

struct ViewAttributes {
    QString name, onResize, onInfoUpdate, onMediaChange;
    static ViewAttributes read(const base::xml::Element& element);
};

struct ElementAttributes {
    QString name, left, top, width, height, visible, onClick, onDblClick, onDrag;
    QString image, toolTip, maskColor; ///< absent for labels
    QString windowMask;                ///< absent for labels and buttons
    QString alignment, autoSize, fontBold, fontItalic, fontSize, foreColor, caption;
    bool hasHeight = false; ///< a label without one is as high as its font asks
    /// @param fullScreen whether the view is the one for the full screen, where nothing drags by itself
    static ElementAttributes read(const base::xml::Element& element, Kind kind, bool fullScreen);
};

/// @returns the attribute, or the default when it is missing
QString GetAttribute(const base::xml::Element& element, const char* name, const QString& fallback);

/// "#" and hexadecimal digits in the order blue, green, red; or a decimal number. This order is meant so.
/// @throws base::Failure 13 for anything else
SkinColour ParseColor(const QString& text);
/// "True", "False" in any case, or a number. @throws base::Failure 13
bool toBoolean(const QString& text);
/// A number, rounded with halves to even. @throws base::Failure 13
int toWhole(const QString& text);

} // namespace skin
