#include "script/vbscript/Locale.h"

namespace script::vbscript
{

namespace
{

constexpr Locale kEnglish = {
    1033,
    u'.',
    u',',
    u'/',
    Locale::DateOrder::MonthDayYear,
    true,
    false,
    1,
    u"$",
    false,
    true,
    u"",
    {u"January", u"February", u"March", u"April", u"May", u"June", u"July", u"August", u"September",
     u"October", u"November", u"December"},
    {u"January", u"February", u"March", u"April", u"May", u"June", u"July", u"August", u"September",
     u"October", u"November", u"December"},
    {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun", u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"},
    {u"Sunday", u"Monday", u"Tuesday", u"Wednesday", u"Thursday", u"Friday", u"Saturday"},
    {u"Sun", u"Mon", u"Tue", u"Wed", u"Thu", u"Fri", u"Sat"},
};

constexpr Locale kRussian = {
    1049,
    u',',
    0xA0,
    u'.',
    Locale::DateOrder::DayMonthYear,
    false,
    true,
    2,
    u"₽",
    true,
    false,
    u" г.",
    {u"Январь", u"Февраль", u"Март", u"Апрель", u"Май", u"Июнь", u"Июль", u"Август", u"Сентябрь", u"Октябрь",
     u"Ноябрь", u"Декабрь"},
    {u"января", u"февраля", u"марта", u"апреля", u"мая", u"июня", u"июля", u"августа", u"сентября",
     u"октября", u"ноября", u"декабря"},
    {u"янв", u"фев", u"мар", u"апр", u"май", u"июн", u"июл", u"авг", u"сен", u"окт", u"ноя", u"дек"},
    {u"воскресенье", u"понедельник", u"вторник", u"среда", u"четверг", u"пятница", u"суббота"},
    {u"Вс", u"Пн", u"Вт", u"Ср", u"Чт", u"Пт", u"Сб"},
};

} // namespace

const Locale& Locale::english() { return kEnglish; }
const Locale& Locale::russian() { return kRussian; }

const Locale* Locale::byId(int id)
{
    if (id == kEnglish.id || id == 9 || id == 2057) return &kEnglish;
    if (id == kRussian.id) return &kRussian;
    return nullptr;
}

} // namespace script::vbscript
