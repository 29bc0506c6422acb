/// @file
/// `extstl::ExtDate` and `extstl::ExtTime`: a calendar date, and a date with a time of day and a
/// label.
#ifndef UTIL_TEXT_DATE_H
#define UTIL_TEXT_DATE_H

#include <cstdint>
#include <ctime>

#include "util/export.h"
#include "util/text/ext_string.h"

namespace extstl {

/// A date in the local time zone of the machine. Fields out of range carry over, as in the
/// runtime's `mktime`: `ExtDate(31, 2, 2010)` is 3 March 2010. By design, the time of day is always
/// 00:00:01, even after construction or assignment from an ExtTime.
///
/// A date is not valid if its local time is before 1970-01-01 00:00:00 UTC, or after the end of the
/// year 3000, the runtime's last year. Then its time is -1, its fields are unchanged, and its text
/// is `""`.
///
/// Copies are independent values. Any thread may use dates, but only one thread at a time may use
/// one object. Raises `std::bad_alloc` if out of memory, and nothing else.
class UTIL_API ExtDate {
  public:
    virtual ~ExtDate();

    /// Returns year, month and day: `"2007 03 05"`.
    virtual ExtString toString() const;

    ExtDate();  ///< Today.

    /// The given day. `month` counts from 1. A `year` below 100 means 2000 + `year`.
    ExtDate(int day, int month, int year);

    /// Copies the day of `other`, at 00:00:01.
    /// @{
    ExtDate(const ExtDate& other);
    ExtDate& operator=(const ExtDate& other);
    /// @}

    /// Returns whether the date is valid (see the comment of ExtDate).
    bool isValid() const;

    /// Returns the fields formatted by the runtime's `strftime`. Returns `""` if the date is not
    /// valid, if `pattern` is null or rejected, or if the text has more than 127 bytes.
    /// `ExtDate(5, 3, 7).text("%d.%m.%y")` is `"05.03.07"`.
    ///
    /// Names and orders are those of the "C" locale, whatever locale the host program sets: `"%c"`
    /// is the same as `"%m/%d/%y %H:%M:%S"`.
    ExtString text(const char* pattern) const;

    /// Returns the seconds since 1970-01-01 00:00:00 UTC, or -1 if the date is not valid.
    std::int64_t time() const { return m_time; }

    /// Returns the local broken-down time. Valid until the object changes or is destroyed.
    const std::tm& fields() const { return m_fields; }

  protected:
    /// Completes a change: sets the time of day and computes the time again. The runtime decides
    /// about daylight saving.
    void set_time_of_day(int hour, int minute, int second);

    std::int64_t m_time = -1;  ///< The result of time().
    std::tm m_fields = {};     ///< The result of fields().
};

/// A date with a time of day, to the second, and a label. The library stores the label and never
/// interprets it. `String::toDate` stores the third word of its text in it, such as the name of a
/// time zone.
///
///     ExtTime t(ExtDate(17, 5, 2010), 12, 30, 45, "UTC");
///     t.toString()   // "2010 05 17 12:30:45"
class UTIL_API ExtTime : public ExtDate {
  public:
    ~ExtTime() override;

    /// Returns the text of the date, a blank, and the time of day as `"%H:%M:%S"`. By design,
    /// returns `""` for the time 1. By design, returns a blank and the time of day for a date that
    /// is not valid.
    ExtString toString() const override;

    ExtTime();  ///< Now, with an empty label.

    /// The given time on the day of `date`. Fields out of range carry over.
    ExtTime(const ExtDate& date, int hour, int minute, int second, const ExtString& label);

    /// The copy constructor computes the time again from date and time of day. In the hour that
    /// daylight saving repeats, the copy may be the other of the two times. Assignment copies time
    /// and fields unchanged. It copies the label up to its first NUL, as the assignment of an
    /// ExtString does.
    /// @{
    ExtTime(const ExtTime& other);
    ExtTime& operator=(const ExtTime& other);
    /// @}

    /// Returns a copy of the label, unchanged. Returns `""` after `ExtTime()`.
    ExtString label() const;

  private:
    ExtString m_label;
};

}  // namespace extstl

#endif
