#include "tools/ToolArguments.h"

#include <cerrno>
#include <cstdlib>

#include "tools/ToolMessages.h"

ToolArguments::ToolArguments(std::string const& command, int argc, char** argv,
                             std::set<std::string> const& valueOptions)
    : m_command(command) {
  for (int i = 0; i < argc; ++i) {
    std::string const word = argv[i];
    if (word == "-h") {
      m_flags.insert("help");
      continue;
    }
    if (word.size() < 3 || word.compare(0, 2, "--") != 0) {
      m_positional.push_back(word);
      continue;
    }
    std::string name = word.substr(2);
    std::size_t const equals = name.find('=');
    if (equals != std::string::npos) {
      m_values[name.substr(0, equals)] = name.substr(equals + 1);
      m_repeated[name.substr(0, equals)].push_back(name.substr(equals + 1));
    } else if (valueOptions.count(name)) {
      if (i + 1 >= argc) throw ToolUsageError{"option --" + name + " needs a value"};
      m_values[name] = argv[++i];
      m_repeated[name].push_back(m_values[name]);
    } else {
      m_flags.insert(name);
    }
  }
}

bool ToolArguments::flag(std::string const& name) {
  m_asked.insert(name);
  return m_flags.count(name) != 0;
}

std::string ToolArguments::value(std::string const& name, std::string const& fallback) {
  m_asked.insert(name);
  auto const found = m_values.find(name);
  return found == m_values.end() ? fallback : found->second;
}

std::vector<std::string> ToolArguments::values(std::string const& name) {
  m_asked.insert(name);
  auto const found = m_repeated.find(name);
  return found == m_repeated.end() ? std::vector<std::string>() : found->second;
}

unsigned long long ToolArguments::number(std::string const& name, unsigned long long fallback,
                                         unsigned long long minimum) {
  std::string const text = value(name, "");
  if (text.empty()) return fallback;
  char* end = nullptr;
  errno = 0;
  unsigned long long const n = std::strtoull(text.c_str(), &end, 10);
  if (text[0] == '-' || *end != 0 || errno != 0 || n < minimum || n > 0xFFFFFFFFull)
    throw ToolUsageError{"--" + name + " wants a whole number of at least " + std::to_string(minimum) + ", not '" +
                         text + "'"};
  return n;
}

double ToolArguments::real(std::string const& name, double fallback) {
  std::string const text = value(name, "");
  if (text.empty()) return fallback;
  char* end = nullptr;
  double const x = std::strtod(text.c_str(), &end);
  if (*end != 0) throw ToolUsageError{"--" + name + " wants a number, not '" + text + "'"};
  return x;
}

void ToolArguments::finish(std::size_t minPositional, std::size_t maxPositional) {
  for (auto const& v : m_values)
    if (!m_asked.count(v.first)) throw ToolUsageError{"unknown option --" + v.first};
  for (auto const& f : m_flags)
    if (!m_asked.count(f)) throw ToolUsageError{"unknown option --" + f};
  if (m_positional.size() < minPositional) throw ToolUsageError{"missing arguments"};
  if (m_positional.size() > maxPositional) throw ToolUsageError{"too many arguments"};
}

void ToolArguments::setSubject(std::string const& subject) {
  m_subject = subject;
  ToolMessages::setSubject(subject);
}
