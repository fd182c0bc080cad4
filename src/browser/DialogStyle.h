#pragma once

#include <QString>

namespace browser
{

inline constexpr int kDialogMargin = 16;
inline constexpr int kButtonHeight = 28;
/// Of thumbnails and of the pictures that show them, pixels. Four to three, as most movies and the slots of
/// the browser's page; large enough to stay sharp where the page is shown at full screen.
inline constexpr int kShotWidth = 240, kShotHeight = 180;

/// The look of this folder's windows.
QString dialogStyle();

} // namespace browser
