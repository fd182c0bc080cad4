#pragma once

// Every text of this folder that a user sees.

namespace ui::texts
{

// clang-format off
inline constexpr const char* kAboutWindow = "О программе";
inline constexpr const char* kGreetings   = "Zorvex показывает ролики и проекторы Macromedia Flash такими, какими они "
                                            "были задуманы: с музыкой, играми и сценариями.<BR><BR>"
                                            "Привет всем, кто рисовал мультфильмы по кадру в секунду и не спал ночами "
                                            "ради ещё одного уровня!";
inline constexpr const char* kThanks      = "Спасибо всем, кто испытывал программу, присылал ролики и терпеливо "
                                            "описывал ошибки.";
inline constexpr const char* kClose       = "Закрыть";
// clang-format on

} // namespace ui::texts
