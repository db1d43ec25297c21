#include "filestore/segy/SegyFormatFile.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fstream>

#include "attribute/AttributeDefinition.h"
#include "attribute/AttributeTranslationTable.h"
#include "filestore/segy/SegyKernels.h"
#include "foundation/Message.h"
#include "foundation/SystemFileLoader.h"
#include "syslayer/FS.h"

namespace {

char const* const kLoadLabel = "SegyFileFormat::myLoadFormat";
// Lines longer than this are cut.
std::size_t const kMaxLine = 1023;

bool isSeparator(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// The words of a line, and where the text after each word begins.
void splitWords(std::string const& line, std::vector<std::string>& words, std::vector<std::size_t>& ends) {
  std::size_t k = 0;
  while (k < line.size()) {
    while (k < line.size() && isSeparator(line[k])) ++k;
    if (k == line.size()) break;
    std::size_t const start = k;
    while (k < line.size() && !isSeparator(line[k])) ++k;
    words.push_back(line.substr(start, k - start));
    ends.push_back(k);
  }
}

std::string upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

std::string lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::string stripped(std::string const& text) {
  std::size_t first = 0;
  while (first < text.size() && isSeparator(text[first])) ++first;
  std::size_t last = text.size();
  while (last > first && isSeparator(text[last - 1])) --last;
  return text.substr(first, last - first);
}

// The defined attribute that the name of a trace field in a Kelp file
// stands for, or null.
char const* kelpDefinitionFor(vUCString const& name) {
  static char const* const kNames[][2] = {
      {"REEL_TRACE", "SEGY.REEL.COUNT"}, {"CDP_X", "CMP.X"},        {"CDP_Y", "CMP.Y"},
      {"SHOT_X", "SHOT.RW.X"},           {"SHOT_Y", "SHOT.RW.Y"},   {"MIDX", "MID.X"},
      {"MIDY", "MID.Y"},                 {"MCDP_X", "CMP.MEAN.X"},  {"MCDP_Y", "CMP.MEAN.Y"},
      {"STN_X", "RCVR.RW.X"},            {"STN_Y", "RCVR.RW.Y"}};
  for (auto const& pair : kNames)
    if (name == vUCString(pair[0])) return pair[1];
  return nullptr;
}

// The defined class that a name of the Kelp scheme stands for; blank for a
// name the scheme does not have.
vUCString kelpClassOf(vUCString const& name) {
  AttributeTranslationTable::NamePairs pairs;
  AttributeTranslationTable::instance("Kelp").getAttributeNamesTranslations(pairs);
  for (auto const& pair : pairs)
    if (pair.first == name) return pair.second;
  return vUCString();
}

}  // namespace

SegyFormatFile::SegyFormatFile() : m_formatName("kelp"), m_addedTrace(static_cast<std::size_t>(-1)) {}

SegyFormatFile::~SegyFormatFile() {}

bool SegyFormatFile::loadFormat(vFilename const& name) {
  if (m_binaryHeader.isEmpty())
    Message::fatal("SegyFormatFile::loadFormat", 0, "Requires that a BinaryHeader has been supplied first.");
  vFilename file(name);
  file.setExtension("syf");
  vString path;
  if (FS::exists(file))
    path = file.getFilename();
  else if (!SystemFileLoader::find(file.getFilename(), path))
    return false;
  m_formatFileName = file;
  myLoadFormat(path);
  myCreateAttributes();
  return true;
}

void SegyFormatFile::myLoadFormat(vString const& path) {
  m_specs = SegyFormatSpecs();
  m_addedTrace = static_cast<std::size_t>(-1);
  std::ifstream in(path.c_str(), std::ios::binary);
  if (!in) Message::fatal(kLoadLabel, 0, "Cannot open format file '%s'.", path.c_str());
  std::string line;
  int lineNumber = 0;
  while (std::getline(in, line)) {
    ++lineNumber;
    if (line.size() > kMaxLine) line.resize(kMaxLine);
    std::size_t const hash = line.find('#');
    if (hash != std::string::npos) line.resize(hash);
    myParseLine(lineNumber, line.c_str());
  }
}

void SegyFormatFile::myParseLine(int lineNumber, vString const& text) {
  std::string const line(text.c_str());
  std::vector<std::string> words;
  std::vector<std::size_t> ends;
  splitWords(line, words, ends);
  if (words.empty()) return;
  std::string const keyword = upper(words[0]);
  std::string const second = words.size() > 1 ? words[1] : std::string();
  if (keyword == "FORMAT") {
    std::string const word = upper(second);
    if (word != "KELP" && word != "DORN")
      Message::fatal(kLoadLabel, 0, "The FORMAT line (%d) must be followed by KELP or DORN, not %s.", lineNumber,
                     second.c_str());
    m_formatName = lower(word).c_str();
  } else if (keyword == "STORECLASS") {
    m_storeClass = second.c_str();
  } else if (keyword == "STORESUBCLASS") {
    m_storeSubClass = second.c_str();
  } else if (keyword == "KEYNAMES") {
    for (std::size_t k = 1; k < words.size() && k <= 2; ++k) {
      vUCString const name(words[k].c_str());
      vUCString const translated = kelpClassOf(name);
      m_keyNames.push_back(translated.isBlank() ? name : translated);
    }
  } else {
    std::vector<std::string> fields(words);
    fields.resize(6);
    fields[5] = words.size() > 5 ? stripped(line.substr(ends[4])) : std::string();
    myParseAttributeLine(lineNumber, fields);
  }
}

void SegyFormatFile::myParseAttributeLine(int lineNumber, std::vector<std::string> const& words) {
  if (words[0].empty()) Message::fatal(kLoadLabel, 0, "Error on line %d: column 2 cannot be blank.", lineNumber);
  if (words[1].empty()) Message::fatal(kLoadLabel, 0, "Error on line %d: column 1 cannot be blank.", lineNumber);
  SegyFormatSpecs::Entry entry;
  entry.name = words[0].c_str();
  entry.alias = words[1].c_str();
  std::string const location = lower(words[2]);
  if (location == "binary")
    entry.location = SegyFormatSpecs::BINARY;
  else if (location == "trace")
    entry.location = SegyFormatSpecs::TRACE;
  else
    Message::fatal(kLoadLabel, 0, "Error on line %d: segy location must be binary or trace, not %s.", lineNumber,
                   words[2].c_str());
  char* end = nullptr;
  errno = 0;
  long const position = words[3].empty() ? 0 : std::strtol(words[3].c_str(), &end, 10);
  if (words[3].empty() || *end != '\0' || errno != 0 || position < INT_MIN + 1 || position > INT_MAX)
    Message::fatal(kLoadLabel, 0, "Error on line %d: position must an integer, not %s.", lineNumber,
                   words[3].c_str());
  entry.offset = static_cast<int>(position) - 1;
  std::string const& format = words[4];
  if (format.empty()) Message::fatal(kLoadLabel, 0, "Error on line %d: format cannot be blank.", lineNumber);
  if (format == "int4")
    entry.type = vINT32;
  else if (format == "int2")
    entry.type = vINT16;
  else if (format == "ieee4")
    entry.type = vFLOAT32;
  else
    Message::fatal(kLoadLabel, 0, "Error on line %d: Unknown format '%s'.", lineNumber, format.c_str());
  entry.description = words[5].c_str();
  m_specs.entries.push_back(entry);
}

void SegyFormatFile::myCreateAttributes() {
  if (m_formatName == vString("kelp")) {
    myCreateKelpAttributes();
  } else if (m_formatName == vString("dorn")) {
    Message::fatal("SegyFormatFile::local_createAttributes", 0, "dorn format specifier not impelmented yet.");
  } else {
    Message::fatal("SegyFormatFile::local_createAttributes", 0, "Unknown format specifier '%s'.",
                   m_formatName.c_str());
  }
}

Attribute SegyFormatFile::myKelpAttribute(SegyFormatSpecs::Entry const& entry) const {
  if (char const* defined = kelpDefinitionFor(entry.name)) return AttributeDefinition::getDefinition(defined);
  if (entry.name == vUCString("LINE_TRACE")) return Attribute("LINE_TRACE", "", vINT32);
  // Named as the file names it; a name of the Kelp scheme carries the class
  // it stands for, so that the table finds its translator.
  Attribute named(entry.name, kelpClassOf(entry.name), entry.type);
  return AttributeTranslationTable::instance("Kelp").convertToCapi(static_cast<Attribute const&>(named));
}

void SegyFormatFile::myCreateKelpAttributes() {
  m_specs.traceEntries.clear();
  for (std::size_t k = 0; k < m_specs.entries.size(); ++k) {
    SegyFormatSpecs::Entry& entry = m_specs.entries[k];
    if (entry.location != SegyFormatSpecs::TRACE) continue;
    entry.attribute = vHandle<Attribute>(new Attribute(myKelpAttribute(entry)));
    // A later entry for the same attribute takes its place.
    m_specs.traceEntries[entry.attribute->getName()] = k;
  }
  myAddInCmp();
  myAddInTrace();
}

bool SegyFormatFile::myDefines(char const* name) const { return m_specs.traceEntries.count(vUCString(name)) > 0; }

void SegyFormatFile::myAddEntry(SegyFormatSpecs::Entry const& entry) {
  m_specs.entries.push_back(entry);
  m_specs.traceEntries[entry.attribute->getName()] = m_specs.entries.size() - 1;
}

void SegyFormatFile::myAddInCmp() {
  if (myDefines("CMP")) return;
  SegyFormatSpecs::Entry entry;
  entry.name = "CMP";
  entry.alias = "CMP";
  entry.attribute = vHandle<Attribute>(new Attribute("CMP", "CMP", vINT32));
  entry.location = SegyFormatSpecs::TRACE;
  entry.offset = 20;
  entry.type = vINT32;
  myAddEntry(entry);
}

void SegyFormatFile::myAddInTrace() {
  if (myDefines("TRACE")) return;
  SegyFormatSpecs::Entry entry;
  entry.name = "TRACE";
  entry.alias = "TRACE";
  entry.attribute = vHandle<Attribute>(new Attribute(myTraceDefinition()));
  entry.location = SegyFormatSpecs::TRACE;
  entry.offset = SegyKernels::TRACE_HEADER_LENGTH;
  entry.type = vFLOAT32;
  myAddEntry(entry);
  m_addedTrace = m_specs.entries.size() - 1;
}

std::list<Attribute> SegyFormatFile::doGetAttributeList() const {
  std::list<Attribute> list;
  for (std::size_t k = 0; k < m_specs.entries.size(); ++k) {
    SegyFormatSpecs::Entry const& entry = m_specs.entries[k];
    if (entry.location != SegyFormatSpecs::TRACE || entry.attribute.isEmpty()) continue;
    // Only the entry that holds the name counts.
    auto const found = m_specs.traceEntries.find(entry.attribute->getName());
    if (found == m_specs.traceEntries.end() || found->second != k) continue;
    // The samples added for the file follow the binary header as it is now.
    list.push_back(k == m_addedTrace ? myTraceDefinition() : Attribute(*entry.attribute));
  }
  return list;
}

int SegyFormatFile::doGetAttributeOffset(vUCString const& name) const {
  auto const found = m_specs.traceEntries.find(name);
  if (found == m_specs.traceEntries.end())
    Message::fatal("SegyFormatFile::doGetAttributeOffset", 0, "Attribute '%s' is not defined in format file '%s'.",
                   name.c_str(), m_formatFileName.c_str());
  return m_specs.entries[found->second].offset;
}

DataType SegyFormatFile::doGetSegyType(vUCString const& name) const {
  auto const found = m_specs.traceEntries.find(name);
  if (found == m_specs.traceEntries.end())
    Message::fatal("SegyFormatFile::doGetSegyType", 0, "Attribute '%s' is not defined in format file '%s'.",
                   name.c_str(), m_formatFileName.c_str());
  return m_specs.entries[found->second].type;
}
