#pragma once

namespace flash::avm1::classes
{

/// A time in its parts. Each may be out of its range on the way in (month 13, day -4).
struct DateParts {
    double year = 1970, month = 0, day = 1; ///< month from 0, day from 1
    double hours = 0, minutes = 0, seconds = 0, milliseconds = 0;
    int weekday = 4; ///< 0: Sunday; an output only
};

/// Milliseconds since 1970-01-01 in the same time zone; not-a-number when a part is none.
double timeFromParts(const DateParts& parts);
DateParts partsFromTime(double timeMs);

/// Minutes to be added to UTC for local time at that moment, as the C library's time zone says.
double localOffsetMinutes(double utcMs);
double localFromUtc(double utcMs);
double utcFromLocal(double localMs);

} // namespace flash::avm1::classes
