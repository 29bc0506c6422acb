// What the user sees: lines, warnings, progress, texts for sizes and dates.
#ifndef AGENT_OUTPUT_H
#define AGENT_OUTPUT_H

#include <chrono>
#include <cstdint>

#include "util/util.h"

// Makes a console show UTF-8. Lives in main() while anything is printed.
class Output {
  public:
    Output();
    ~Output();

  private:
    unsigned int m_console_page;  // restored at the end: the console outlives this program
};

// Prints a line on standard output.
void print(const String& line);

// Prints a line on standard error, after what was printed until then. "agent: " goes before it.
void warn(const String& message);

// `text` as a terminal gets it: control characters as "\x1B", so no name can command it.
// print() and warn() do this by themselves. Files and pipes get every byte as it is.
String visible(const String& text);

// At most 9 characters: size_text(1536) is "1.5 KB".
String size_text(double bytes);

// Local time of seconds since 1970 UTC, always 19 characters: "2010 03 07 14:05:09".
String date_text(std::int64_t time);

// A counter on a line of its own, rewritten at most ten times a second. Only on a terminal.
class Progress {
  public:
    Progress();
    ~Progress();  // wipes the line
    void show(std::uint64_t entries);

  private:
    bool m_on_terminal;
    std::chrono::steady_clock::time_point m_next;
};

#endif
