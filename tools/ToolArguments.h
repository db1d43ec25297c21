#ifndef TOOLS_TOOLARGUMENTS_H
#define TOOLS_TOOLARGUMENTS_H

// ToolArguments: the words after a command name, split into positional
// words and "--name value" / "--flag" options. Which options take a value
// is the command's business: it asks by name, and whatever was given but
// never asked for is reported by finish() as a usage error.

#include <map>
#include <set>
#include <string>
#include <vector>

class ToolArguments {
 public:
  ToolArguments(std::string const& command, int argc, char** argv, std::set<std::string> const& valueOptions);

  std::string const& command() const { return m_command; }
  std::vector<std::string> const& positional() const { return m_positional; }
  bool flag(std::string const& name);
  // The value of an option, or the fallback when it was not given.
  std::string value(std::string const& name, std::string const& fallback);
  // Every value of an option that may be repeated, in the order given.
  std::vector<std::string> values(std::string const& name);
  bool has(std::string const& name) const { return m_values.count(name) != 0; }
  // A whole number of at least `minimum`; a usage error otherwise.
  unsigned long long number(std::string const& name, unsigned long long fallback, unsigned long long minimum);
  double real(std::string const& name, double fallback);
  // Usage errors for unknown options and a wrong count of positional words.
  void finish(std::size_t minPositional, std::size_t maxPositional);

  // What the error and warning lines name: a store, a host, a project.
  void setSubject(std::string const& subject);
  std::string const& subject() const { return m_subject; }

 private:
  std::string m_command;
  std::string m_subject;
  std::vector<std::string> m_positional;
  std::map<std::string, std::string> m_values;
  std::map<std::string, std::vector<std::string> > m_repeated;
  std::set<std::string> m_flags;
  std::set<std::string> m_asked;
};

// A mistake in the command line: the tool prints it with the command's
// usage (unless brief: the line says all) and exits with status 2.
struct ToolUsageError {
  std::string text;
  bool brief = false;
};

#endif
