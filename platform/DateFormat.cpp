#include "platform/DateFormat.h"

namespace tavuro::platform {
namespace {

// 1582-10-15T00:00:00Z, the first day of the Gregorian calendar; the day
// before it is 1582-10-04 of the Julian calendar.
constexpr std::int64_t kGregorianStartSeconds = -12219292800;

constexpr std::int64_t kSecondsPerDay = 86400;

// Julian day number of 1970-01-01.
constexpr std::int64_t kJulianDayOfEpoch = 2440588;

struct CalendarDate {
  std::int64_t year;  // astronomical: 0 is 1 BC, -1 is 2 BC
  int month;
  int day;
};

constexpr std::int64_t floorDiv(std::int64_t a, std::int64_t b) {
  const std::int64_t q = a / b;
  return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

// Both conversions count years from March, so that the leap day is the last
// day of its year and months have a fixed pattern of lengths; `dayOfYear`
// is days since March 1st and `marchYear` the year that starts then.
CalendarDate fromMarchYear(std::int64_t marchYear, std::int64_t dayOfYear) {
  const std::int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;  // 0 = March
  const int day = static_cast<int>(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1);
  const int month = static_cast<int>(monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9);
  return {marchYear + (month <= 2 ? 1 : 0), month, day};
}

CalendarDate gregorianDate(std::int64_t julianDay) {
  // Julian day 1721120 is 0000-03-01 in the Gregorian calendar.
  const std::int64_t days = julianDay - 1721120;
  const std::int64_t cycle = floorDiv(days, 146097);  // 400-year cycles
  const std::int64_t dayOfCycle = days - cycle * 146097;
  const std::int64_t yearOfCycle =
      (dayOfCycle - dayOfCycle / 1460 + dayOfCycle / 36524 - dayOfCycle / 146096) / 365;
  const std::int64_t dayOfYear =
      dayOfCycle - (365 * yearOfCycle + yearOfCycle / 4 - yearOfCycle / 100);
  return fromMarchYear(cycle * 400 + yearOfCycle, dayOfYear);
}

CalendarDate julianDate(std::int64_t julianDay) {
  // Julian day 1721118 is 0000-03-01 in the Julian calendar.
  const std::int64_t days = julianDay - 1721118;
  const std::int64_t cycle = floorDiv(days, 1461);  // 4-year cycles
  const std::int64_t dayOfCycle = days - cycle * 1461;
  const std::int64_t yearOfCycle = (dayOfCycle - dayOfCycle / 1460) / 365;
  const std::int64_t dayOfYear = dayOfCycle - 365 * yearOfCycle;
  return fromMarchYear(cycle * 4 + yearOfCycle, dayOfYear);
}

char* putTwoDigits(char* out, int value) {
  out[0] = static_cast<char>('0' + value / 10);
  out[1] = static_cast<char>('0' + value % 10);
  return out + 2;
}

// At least four digits, zero-padded; never cut.
char* putYear(char* out, std::int64_t year) {
  char digits[20];
  int count = 0;
  do {
    digits[count++] = static_cast<char>('0' + year % 10);
    year /= 10;
  } while (year > 0);
  for (int pad = count; pad < 4; ++pad) *out++ = '0';
  while (count > 0) *out++ = digits[--count];
  return out;
}

}  // namespace

std::string formatDateMMddyyyyGMT(std::int64_t secondsSinceEpoch) {
  if (secondsSinceEpoch < kEarliestFormattedSeconds ||
      secondsSinceEpoch > kLatestFormattedSeconds) {
    return {};
  }
  const std::int64_t seconds = secondsSinceEpoch;
  const std::int64_t julianDay = floorDiv(seconds, kSecondsPerDay) + kJulianDayOfEpoch;
  const CalendarDate date =
      seconds >= kGregorianStartSeconds ? gregorianDate(julianDay) : julianDate(julianDay);
  // The year of era: 1 BC is 1, 2 BC is 2, and no era is shown.
  const std::int64_t yearOfEra = date.year > 0 ? date.year : 1 - date.year;

  char text[32];
  char* out = putTwoDigits(text, date.month);
  *out++ = '-';
  out = putTwoDigits(out, date.day);
  *out++ = '-';
  out = putYear(out, yearOfEra);
  return std::string(text, out);
}

}  // namespace tavuro::platform
