#include "database/zon/ZonClassConvertLoader.h"

#include <istream>
#include <ostream>
#include <sstream>
#include <string>

#include "foundation/Message.h"

ZonClassConvertLoader::ZonClassConvertLoader() : m_toZon(nullptr), m_fromZon(nullptr) {}

ZonClassConvertLoader::~ZonClassConvertLoader() {}

void ZonClassConvertLoader::setMaps(ClassMap* toZon, ClassMap* fromZon) {
  m_toZon = toZon;
  m_fromZon = fromZon;
}

std::vector<vString> ZonClassConvertLoader::parseString(vString& line) {
  std::vector<vString> tokens;
  std::istringstream words(line.c_str());
  std::string word;
  while (words >> word) tokens.push_back(vString(word.c_str()));
  return tokens;
}

bool ZonClassConvertLoader::checkForTokens(std::vector<vString> const& tokens, vString const& line) {
  if (static_cast<int>(tokens.size()) == kTokens) return true;
  Message::info("ZonClassConvertLoader::checkForTokens", 0, "%d tokens located in string %s. Line ignored",
                static_cast<int>(tokens.size()), line.c_str());
  return false;
}

void ZonClassConvertLoader::doLoad(std::istream& in, vString const&) {
  if (!m_toZon || !m_fromZon) Message::fatal("ZonClassConvertLoader::doLoad", 0, "No maps to load into.");
  std::string text;
  while (std::getline(in, text)) {
    std::size_t const start = text.find_first_not_of(" \t\r");
    if (start == std::string::npos || text[start] == '#') continue;
    if (text.back() == '\r') text.pop_back();
    vString line(text.c_str());
    std::vector<vString> const tokens = parseString(line);
    if (!checkForTokens(tokens, line)) continue;
    // "-" stands for a blank subclass, which a line of words cannot hold.
    vString const subClass = tokens[1] == vString("-") ? vString() : tokens[1];
    ClassPair const ours(tokens[0].c_str(), subClass.c_str());
    ClassPair const theirs(tokens[2].c_str(), tokens[3].c_str());
    (*m_toZon)[ours] = theirs;
    // The first translation of a database class is the one read back.
    m_fromZon->insert(ClassMap::value_type(theirs, ours));
  }
}

void ZonClassConvertLoader::dumpMaps(std::ostream& out) const {
  ClassMap const* maps[2] = {m_toZon, m_fromZon};
  for (ClassMap const* map : maps) {
    if (!map) continue;
    for (ClassMap::value_type const& entry : *map)
      out << entry.first.first.c_str() << '\t' << entry.first.second.c_str() << '\t' << entry.second.first.c_str()
          << '\t' << entry.second.second.c_str() << '\n';
  }
}
