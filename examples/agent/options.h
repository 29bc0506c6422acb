// Options and operands on the command line of a verb.
#ifndef AGENT_OPTIONS_H
#define AGENT_OPTIONS_H

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "agent.h"

// Options and operands may be mixed. A word that begins with "-" is an option, until the word "--".
class Options {
  public:
    // `known` lists the verb's options. A name that ends in "=" takes a value: "--skip=" accepts
    // "--skip NAME" and "--skip=NAME". Raises UsageError for any other option, and HelpWanted for
    // "-h" and "--help".
    Options(const Arguments& words, std::initializer_list<std::string> known);

    bool has(const std::string& name) const;
    std::vector<String> values(const std::string& name) const;  // in the order of the words
    const Arguments& operands() const { return m_operands; }

  private:
    std::vector<std::pair<std::string, String>> m_options;  // name and value
    Arguments m_operands;
};

#endif
