#pragma once

#include <QColor>
#include <QString>

// The product's colours and type, shared by everything it draws. A skin may replace what it covers.

namespace core::look
{

inline constexpr QRgb kInk = qRgb(0x16, 0x20, 0x2E);   ///< window ground; text on paper
inline constexpr QRgb kSlate = qRgb(0x22, 0x33, 0x49); ///< panels, control bar
inline constexpr QRgb kSteel = qRgb(0x34, 0x50, 0x6F); ///< raised parts, tracks, borders on dark
inline constexpr QRgb kBlue = qRgb(0x49, 0x74, 0xBA);  ///< selection, progress, primary action
inline constexpr QRgb kSky = qRgb(0x7F, 0xA6, 0xE0);   ///< pointer over, focus ring, links on dark
inline constexpr QRgb kIce = qRgb(0xEE, 0xEE, 0xFF);   ///< text and glyphs on dark
inline constexpr QRgb kPaper = qRgb(0xF6, 0xF8, 0xFC); ///< dialogs
inline constexpr QRgb kAmber = qRgb(0xF2, 0xA9, 0x3B); ///< attention only
inline constexpr QRgb kRed = qRgb(0xD9, 0x53, 0x4F);   ///< errors only

/// Sets style, palette, font and language of the whole program, those of the toolkit's own dialogs among
/// them. Needs the QApplication.
void initialiseVisualStyle();
/// Follows what the desktop asks for those who see less well: black on white, and texts larger than usual.
/// Dialogs and menus have it at once.
void adapt(bool highContrast, double textScale);
/// Gives the toolkit's own buttons and dialogs a language.
void translateToolkit(const QString& code);

} // namespace core::look
