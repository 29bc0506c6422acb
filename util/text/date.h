// extstl::ExtDate and extstl::ExtTime: a calendar date, and a date with a time of day and a label.
#ifndef UTIL_TEXT_DATE_H
#define UTIL_TEXT_DATE_H

#include <cstdint>
#include <ctime>

#include "util/export.h"
#include "util/text/ext_string.h"

namespace extstl {

// A date in the machine's local time zone, always at the time of day 00:00:01; this is meant, and
// a date made or assigned from an ExtTime follows it too. Fields out of range carry over, as the
// runtime's mktime does it: ExtDate(31, 2, 2010) is 3 March 2010.
//
// A date whose local time lies before 1970-01-01 00:00:00 UTC or beyond what the runtime reckons
// (the end of the year 3000) is not valid: its time is -1, its fields stay as they were given, and
// its text is "". Values are independent and may be used from any thread, one object from one
// thread at a time. Memory exhaustion raises std::bad_alloc; nothing else is raised.
class UTIL_API ExtDate {
  public:
    virtual ~ExtDate();

    // The date as year, month and day: "2007 03 05".
    virtual ExtString toString() const;

    ExtDate();                              // today
    ExtDate(int day, int month, int year);  // month from 1; a year below 100 means 2000 + year

    // The other's day, at 00:00:01.
    ExtDate(const ExtDate& other);
    ExtDate& operator=(const ExtDate& other);

    // Whether the fields form a time.
    bool isValid() const;

    // The fields written by the runtime's strftime: ExtDate(5, 3, 7).text("%d.%m.%y") is
    // "05.03.07". "" when the date is not valid, the pattern is null or rejected, or the text has
    // more than 127 bytes. Names and orders are those of the "C" locale, whatever the host program
    // has set: "%c" is as "%m/%d/%y %H:%M:%S".
    ExtString text(const char* pattern) const;

    // Seconds since 1970-01-01 00:00:00 UTC; -1 when not valid.
    std::int64_t time() const { return m_time; }

    // The local broken-down time; valid until the object changes or goes.
    const std::tm& fields() const { return m_fields; }

  protected:
    // Completes a change: daylight saving is the runtime's to decide, and the time is made anew.
    void set_time_of_day(int hour, int minute, int second);

    std::int64_t m_time = -1;  // as time() gives it
    std::tm m_fields = {};     // as fields() gives them
};

// A date with its time of day, to the second, and a label that the library keeps but never reads;
// the third word of a text read by String::toDate, such as the name of a time zone.
//
//     ExtTime t(ExtDate(17, 5, 2010), 12, 30, 45, "UTC");
//     t.toString()   // "2010 05 17 12:30:45"
class UTIL_API ExtTime : public ExtDate {
  public:
    ~ExtTime() override;

    // The date's text, a blank, and "%H:%M:%S". Meant as it is: "" for the time 1, and a blank and
    // the time of day for a date that is not valid.
    ExtString toString() const override;

    ExtTime();  // now, with an empty label

    // That time of the date's day; fields out of range carry over.
    ExtTime(const ExtDate& date, int hour, int minute, int second, const ExtString& label);

    // Makes the time anew from date and time of day, so in the hour that daylight saving repeats
    // the copy may be the other one; assignment keeps both as they are, and takes the label up to
    // its first NUL, as assigning an ExtString does.
    ExtTime(const ExtTime& other);
    ExtTime& operator=(const ExtTime& other);

    // A copy of the label, of which nothing is trimmed or changed; "" for an object made as now.
    ExtString label() const;

  private:
    ExtString m_label;
};

}  // namespace extstl

#endif
