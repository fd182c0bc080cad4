#pragma once

#include "core/Text.h"

// Every text of this folder that a user sees.

namespace ui::texts
{

// clang-format off
inline constexpr core::Text kAboutWindow = QT_TRANSLATE_NOOP("zorvex", "О программе");
inline constexpr core::Text kGreetings   = QT_TRANSLATE_NOOP("zorvex", "Zorvex показывает ролики и проекторы Macromedia Flash такими, какими они "
                                            "были задуманы: с музыкой, играми и сценариями.<BR><BR>"
                                            "Привет всем, кто рисовал мультфильмы по кадру в секунду и не спал ночами "
                                            "ради ещё одного уровня!");
inline constexpr core::Text kThanks      = QT_TRANSLATE_NOOP("zorvex", "Спасибо всем, кто испытывал программу, присылал ролики и терпеливо "
                                            "описывал ошибки.");
inline constexpr core::Text kClose       = QT_TRANSLATE_NOOP("zorvex", "Закрыть");
inline constexpr core::Text kHelp        = QT_TRANSLATE_NOOP("zorvex", "Справка");
inline constexpr core::Text kHelpContents = QT_TRANSLATE_NOOP("zorvex", "К началу");
// clang-format on

} // namespace ui::texts
