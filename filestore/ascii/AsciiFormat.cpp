#include "filestore/ascii/AsciiFormat.h"

#include <dirent.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "attribute/AttributeDefinition.h"
#include "filestore/ascii/AsciiText.h"
#include "foundation/Message.h"
#include "foundation/MessageHandling.h"
#include "foundation/UtlExcept.h"
#include "foundation/vUtl.h"
#include "project/StoreDescription.h"
#include "syslayer/FS.h"

namespace {

char const* const kParseLabel = "AsciiFormat::myParseRecordsTag";

// The built-in formats, by the text their files start with.
struct Recognised {
  char const* first;
  char const* second;
  char const* root;
};
Recognised const kRecognised[] = {
    {"PELAGOS HORIZON V1.0", nullptr, "PelagosHorizon2"}, {"PELAGOS POLYGONS V1.0", nullptr, "PelagosPolygons"},
    {"PELAGOS POLYLINES V1.0", nullptr, "PelagosPolylines"}, {"size", "colour", "PelagosShapes"},
    {"PELAGOS MAPDATA V1.0", nullptr, "PelagosMapData"},   {"VoxelGeo XYZ", nullptr, "VoxelGeo_XYZ"},
    {"description:", nullptr, "TarsusFoldMap"},
};

// "a-b c-d" as ranges; a lone number is a range of one.
std::vector<AsciiFormat::Range> ranges(std::string const& text) {
  std::vector<AsciiFormat::Range> out;
  for (std::string const& word : ascii_text::words(text)) {
    AsciiFormat::Range r{0, 0};
    if (std::sscanf(word.c_str(), "%d-%d", &r.first, &r.last) == 1) r.last = r.first;
    out.push_back(r);
  }
  return out;
}

// The value of Name="value" in the arguments of a tag, any case of Name.
bool argument(std::string const& arguments, char const* name, std::string& value) {
  std::string const lower = ascii_text::lower(arguments);
  std::string const key = ascii_text::lower(name) + "=";
  std::size_t at = 0;
  while ((at = lower.find(key, at)) != std::string::npos) {
    if (at == 0 || std::isspace(static_cast<unsigned char>(lower[at - 1]))) break;
    ++at;
  }
  if (at == std::string::npos) return false;
  std::size_t start = at + key.size();
  if (start < arguments.size() && arguments[start] == '"') {
    std::size_t const end = arguments.find('"', start + 1);
    value = arguments.substr(start + 1, end == std::string::npos ? std::string::npos : end - start - 1);
  } else {
    std::size_t const end = arguments.find_first_of(" \t\r\n", start);
    value = arguments.substr(start, end == std::string::npos ? std::string::npos : end - start);
  }
  return true;
}

Attribute attributeNamed(std::string const& name) {
  vUCString const upper(name.c_str());
  try {
    MessageHandling quiet;
    if (AttributeDefinition::hasDefinition(upper)) return AttributeDefinition::getDefinition(upper, 1);
  } catch (UtlExcept const&) {
    // Without a vocabulary every name is a new attribute.
  }
  return Attribute(upper, vUCString(""), vFLOAT64, 1);
}

std::string rootOf(vFilename const& file) { return file.getRoot().c_str(); }

// What the readers' scanning takes whole, exponents included.
bool readsAsNumber(std::string const& item) {
  char* end = nullptr;
  std::strtod(item.c_str(), &end);
  return !item.empty() && end != item.c_str() && ascii_text::strip(end).empty();
}

// The first record of a table with text columns: a line with a number
// among its items, after a line of as many names that are not numbers.
// Only lines before `before` are looked at; `before` when there is none.
std::size_t findTextTable(std::vector<std::string> const& lines, std::size_t before) {
  for (std::size_t k = 1; k < before && k < lines.size(); ++k) {
    char const separator = lines[k - 1].find(',') != std::string::npos ? ',' : ' ';
    std::vector<std::string> const names = ascii_text::items(lines[k - 1], separator);
    std::vector<std::string> const items = ascii_text::items(lines[k], separator);
    if (names.empty() || names.size() != items.size()) continue;
    bool named = true, numbered = false;
    for (std::string const& n : names) named = named && !ascii_text::isNumber(n.c_str());
    for (std::string const& i : items) numbered = numbered || ascii_text::isNumber(i.c_str());
    if (named && numbered) return k;
  }
  return before;
}

}  // namespace

AsciiFormat::AsciiFormat()
    : m_kind(SINGLE_LINE),
      m_fixedLengthLines(false),
      m_dynamic(false),
      m_checkingNumbers(false),
      m_variableLength(false),
      m_recordSeparator('\n'),
      m_itemSeparator(' '),
      m_nRecordSets(1),
      m_nRecordHeaderItems(0),
      m_hasGrid(false) {}

AsciiFormat::AsciiFormat(vFilename const& specification) : AsciiFormat() {
  myConstructFromFilename(specification);
}

AsciiFormat::AsciiFormat(StoreDescription const& description) : AsciiFormat() {
  vString spec = description.getFormatSpec();
  if (spec.isBlank()) spec = getSpecification(description.getFlatFileName()).getFilename();
  if (!spec.isBlank()) {
    myConstructFromFilename(vFilename(spec));
    return;
  }
  std::string const text = ascii_text::readFile(description.getFlatFileName().c_str());
  myConstructFromData(text.c_str());
}

AsciiFormat::AsciiFormat(char const* data) : AsciiFormat() {
  vFilename const spec = getSpecification(data);
  if (!spec.getFilename().isBlank()) {
    myConstructFromFilename(spec);
    if (m_dynamic) myConstructDynamicFormat(data);
    return;
  }
  myConstructFromData(data);
}

// --- description files --------------------------------------------------------------------

void AsciiFormat::myConstructFromFilename(vFilename const& specification) {
  m_fileName = specification;
  m_text = vString(ascii_text::readFile(specification.c_str()).c_str());
  if (rootOf(m_fileName) == "PelagosShapes") {
    m_attributes.clear();
    for (char const* name : {"X", "Y", "Z"}) m_attributes.push_back(Attribute(name, "", vFLOAT64, 1));
  }
  myParseFormatSpecification(m_text);
}

AsciiFormat AsciiFormat::fromText(char const* specification, vFilename const& name) {
  AsciiFormat format;
  format.m_fileName = name;
  format.m_text = vString(specification);
  format.myParseFormatSpecification(format.m_text);
  return format;
}

void AsciiFormat::myParseFormatSpecification(vString const& whole) {
  std::string const text(whole.c_str());
  std::size_t at = 0;
  while ((at = text.find('<', at)) != std::string::npos) {
    std::size_t close = text.find('>', at + 1);
    if (close == std::string::npos) close = text.size();
    std::string const tag = ascii_text::strip(text.substr(at + 1, close - at - 1));
    std::size_t const bodyEnd = close < text.size() ? text.find('<', close + 1) : std::string::npos;
    std::string const body =
        close < text.size() ? text.substr(close + 1, (bodyEnd == std::string::npos ? text.size() : bodyEnd) - close - 1)
                            : std::string();
    std::size_t const space = tag.find_first_of(" \t\r\n");
    std::string const name = tag.substr(0, space);
    std::string const arguments = space == std::string::npos ? std::string() : tag.substr(space + 1);
    myParseTag(vString(name.c_str()), vString(arguments.c_str()), vString(body.c_str()));
    at = close;
  }
}

void AsciiFormat::myParseTag(vString const& nameText, vString const& arguments, vString const& body) {
  std::string const name = ascii_text::lower(nameText.c_str());
  if (name == "dynamicformat") {
    m_dynamic = true;
  } else if (name == "header") {
    std::string lines;
    if (argument(arguments.c_str(), "Lines", lines)) m_headerRanges = ranges(lines);
  } else if (name == "repeatingrecords") {
    myParseRecordsTag(REPEATING, arguments, body);
  } else if (name == "singlelinerecords") {
    myParseRecordsTag(SINGLE_LINE, arguments, body);
  } else if (name == "multilinerecords") {
    myParseRecordsTag(MULTI_LINE, arguments, body);
  }
}

void AsciiFormat::myParseRecordsTag(int kind, vString const& argumentText, vString const& body) {
  std::string const arguments(argumentText.c_str());
  m_kind = kind;
  std::string value;
  if (argument(arguments, "Length", value)) m_fixedLengthLines = ascii_text::lower(value) == "fixed";
  bool const fixedAttributes = rootOf(m_fileName) == "PelagosShapes";
  if (!fixedAttributes) m_attributes.clear();
  m_variableLength = false;
  for (std::string const& word : ascii_text::words(body.c_str())) {
    if (word == "...") {
      m_variableLength = true;
      continue;
    }
    if (!fixedAttributes) m_attributes.push_back(attributeNamed(word));
  }
  std::size_t const n = m_attributes.size();
  m_columns.clear();
  if (argument(arguments, "Columns", value)) {
    m_columns = ranges(value);
    if (m_columns.size() != n) {
      Message::error(kParseLabel, 0,
                     "Format specification error: there should be the same number of columns as attributes.");
      Message::error(kParseLabel, 0,
                     "The specification will be cleaned by ignoring the columns and reverting to dynamic reading.");
      m_columns.clear();
    }
  }
  m_formats.clear();
  if (argument(arguments, "Formats", value)) {
    for (std::string const& word : ascii_text::words(value)) {
      std::string const upper = ascii_text::upper(word);
      if (upper == "I32")
        m_formats.push_back(vINT32);
      else if (upper == "I64")
        m_formats.push_back(vINT64);
      else if (upper == "F32")
        m_formats.push_back(vFLOAT32);
      else if (upper == "F64")
        m_formats.push_back(vFLOAT64);
      else
        Message::fatal("AsciiFormat", 0, "Unknown format.");
    }
    if (m_formats.size() != n) {
      Message::error(kParseLabel, 0,
                     "Format specification error: there should be the same number of formats as attributes.");
      Message::error(kParseLabel, 0,
                     "The specification will be cleaned by ignoring the formats and assuming defaults.");
      m_formats.clear();
    }
  }
  // The formats give the attributes their types.
  std::size_t k = 0;
  for (Attribute& a : m_attributes) {
    if (k < m_formats.size() && a.getDataType() != m_formats[k])
      a = Attribute(a.getName(), a.getClass(), m_formats[k], a.getLength());
    ++k;
  }
  if (m_variableLength && !m_attributes.empty())
  {
    Attribute& last = m_attributes.back();
    last = Attribute(last.getName(), last.getClass(), last.getDataType(), Attribute::VARIABLE_LENGTH);
  }
  if (!m_attributes.empty()) m_zAttributeName = m_attributes.back().getName();
}

void AsciiFormat::write(vFilename const& file) const {
  std::string out = "<Header Lines=\"";
  for (std::size_t k = 0; k < m_headerRanges.size(); ++k)
    out += (k ? " " : "") + std::to_string(m_headerRanges[k].first) + "-" + std::to_string(m_headerRanges[k].last);
  out += "\">";
  out += "</Header>\n";
  static char const* const tags[] = {"RepeatingRecords", "SingleLineRecords", "MultiLineRecords"};
  out += std::string("<") + tags[m_kind];
  if (m_fixedLengthLines) out += " Length=\"FIXED\"";
  if (!m_columns.empty()) {
    out += " Columns=\"";
    for (std::size_t k = 0; k < m_columns.size(); ++k)
      out += (k ? " " : "") + std::to_string(m_columns[k].first) + "-" + std::to_string(m_columns[k].last);
    out += "\"";
  }
  out += " Formats=\"";
  for (Attribute const& a : m_attributes) {
    switch (a.getDataType()) {
      case vINT32:
        out += "i32 ";
        break;
      case vINT64:
        out += "i64 ";
        break;
      case vFLOAT32:
        out += "f32 ";
        break;
      case vFLOAT64:
        out += "f64 ";
        break;
      default:
        Message::fatal("AsciiFormat::write", 0, "Unknown data type.");
    }
  }
  out += "\">";
  for (Attribute const& a : m_attributes) out += std::string(a.getName().c_str()) + " ";
  if (m_variableLength) out += "...";
  out += std::string("</") + tags[m_kind] + ">\n";
  // Made as a byte-addressed file, as the stores make theirs.
  FS::ioFile f = FS::create(file, FS::ByteFile, 1024);
  if (!f.isGood()) f.terminate("AsciiFormat::write");
  f.write(1, out.data(), static_cast<int>(out.size()));
  if (!f.isGood()) f.terminate("AsciiFormat::write");
  f.close();
}

// --- from data ----------------------------------------------------------------------------

void AsciiFormat::myConstructFromData(char const* data) {
  std::vector<std::string> const lines = ascii_text::lines(data);
  std::size_t first = 0;
  while (first < lines.size() && !ascii_text::isNumericLine(lines[first])) ++first;
  std::size_t const textFirst = findTextTable(lines, first);
  if (textFirst < first) {
    myConstructTextTable(lines, textFirst);
    return;
  }
  if (first == lines.size()) {
    setNumberOfAttributes(0);
    return;
  }
  if (first > 0) m_headerRanges.push_back(Range{1, static_cast<int>(first)});
  std::vector<std::string> const items = ascii_text::items(lines[first]);
  int const count = static_cast<int>(items.size());
  if (myMatchPredefinedFormat(count)) {
    m_headerRanges.clear();
    if (first > 0) m_headerRanges.push_back(Range{1, static_cast<int>(first)});
    return;
  }
  std::vector<std::string> names;
  if (first > 0) names = ascii_text::items(lines[first - 1]);
  if (static_cast<int>(names.size()) != count) names.clear();
  m_attributes.clear();
  for (int k = 0; k < count; ++k)
    m_attributes.push_back(names.empty() ? Attribute(("COLUMN_" + std::to_string(k + 1)).c_str(), "", vFLOAT64)
                                         : attributeNamed(names[k]));
}

// A table whose records hold text as well as numbers: the line of names
// before the first record says how many items a record has; a column is
// text if one of its items does not read as a number.
void AsciiFormat::myConstructTextTable(std::vector<std::string> const& lines, std::size_t first) {
  m_headerRanges.assign(1, Range{1, static_cast<int>(first)});
  // Names separated by commas make a CSV table, whose items may hold blanks.
  if (lines[first - 1].find(',') != std::string::npos) m_itemSeparator = ',';
  std::vector<std::string> const names = ascii_text::items(lines[first - 1], m_itemSeparator);
  std::vector<bool> text(names.size(), false);
  for (std::size_t line = first; line < lines.size(); ++line) {
    std::vector<std::string> const items = ascii_text::items(lines[line], m_itemSeparator);
    for (std::size_t k = 0; k < items.size() && k < text.size(); ++k)
      if (!readsAsNumber(items[k])) text[k] = true;
  }
  m_attributes.clear();
  for (std::size_t k = 0; k < names.size(); ++k)
    m_attributes.push_back(text[k] ? Attribute(vUCString(names[k].c_str()), vUCString(""), vSTRING, 1)
                                   : attributeNamed(names[k]));
}

bool AsciiFormat::myMatchPredefinedFormat(int count) {
  for (vFilename const& spec : getSpecifications()) {
    AsciiFormat candidate(spec);
    if (candidate.isDynamic() || candidate.areRecordsVariableLength() || candidate.hasFixedColumns()) continue;
    if (static_cast<int>(candidate.getAttributeList().size()) != count) continue;
    *this = candidate;
    return true;
  }
  return false;
}

// The fold map header: "description:" to the end of its line, then word
// pairs "name: value" for the grid, in this order: first_inline,
// inline_increment, num_inlines, first_crossline, crossline_increment,
// num_crosslines, inline_interval, crossline_interval, x_origin, y_origin,
// angle (degrees); "datatype:" may come anywhere among them.
void AsciiFormat::myConstructDynamicFormat(char const* data) {
  if (rootOf(m_fileName) != "TarsusFoldMap") return;
  static char const* const keys[] = {"first_inline:",      "inline_increment:",   "num_inlines:",
                                     "first_crossline:",   "crossline_increment:", "num_crosslines:",
                                     "inline_interval:",   "crossline_interval:", "x_origin:",
                                     "y_origin:",          "angle:"};
  std::vector<std::string> const lines = ascii_text::lines(data);
  std::vector<std::string> words;
  std::size_t line = 0;
  for (; line < lines.size() && !ascii_text::isNumericLine(lines[line]); ++line) {
    if (lines[line].find("description:") != std::string::npos) continue;
    for (std::string const& w : ascii_text::words(lines[line])) words.push_back(w);
  }
  double values[11];
  std::size_t w = 0;
  for (int k = 0; k < 11; ++k) {
    while (w < words.size() && ascii_text::lower(words[w]) != keys[k]) ++w;
    if (w + 1 >= words.size() || !isNumber(words[w + 1].c_str()))
      Message::fatal("AsciiFormat::myConstructDynamicFormat", 0, "The fold map header has no value for %s",
                     keys[k]);
    values[k] = std::atof(words[w + 1].c_str());
    w += 2;
  }
  m_grid = CMPBasicGrid(1, 1, static_cast<int>(values[0]), static_cast<int>(values[1]), static_cast<int>(values[2]),
                        static_cast<int>(values[3]), static_cast<int>(values[4]), static_cast<int>(values[5]),
                        vCoordinate(values[8], values[9]), static_cast<float>(values[6]),
                        static_cast<float>(values[7]), values[10] * M_PI / 180.0);
  m_hasGrid = true;
  m_headerRanges.assign(1, Range{1, static_cast<int>(line)});
  m_kind = REPEATING;
  m_attributes.clear();
  for (char const* name : {"CMP.FOLD", "INLINE", "CROSSLINE"}) m_attributes.push_back(Attribute(name, "", vINT32));
}

// --- questions ----------------------------------------------------------------------------

vLCString AsciiFormat::getStoreClass() const {
  std::string const root = rootOf(m_fileName);
  if (root == "PelagosPolygons" || root == "PelagosPolylines" || root == "PelagosShapes") return vLCString("shapes");
  if (root == "PelagosHorizon2" || root == "TarsusFoldMap") return vLCString("horizon");
  return vLCString("generic");
}

vLCString AsciiFormat::getStoreSubClass() const {
  std::string const root = rootOf(m_fileName);
  if (root == "PelagosPolygons") return vLCString("polygons");
  if (root == "PelagosPolylines") return vLCString("polylines");
  if (root == "PelagosShapes") return vLCString("generic");
  return vLCString();
}

void AsciiFormat::setAttributeName(int index, char const* name) {
  int k = 0;
  for (Attribute& a : m_attributes)
    if (k++ == index) a.setName(vUCString(name));
}

char AsciiFormat::getAttributeInitialForColumn(int column) const {
  int k = 0;
  for (Attribute const& a : m_attributes)
    if (k++ == column) return a.getName().c_str()[0];
  return ' ';
}

CMPBasicGrid const& AsciiFormat::getCMPBasicGrid() const {
  if (!m_hasGrid) Message::fatal("AsciiFormat::getCMPBasicGrid", 0, "Attempt to access empty grid.");
  return m_grid;
}

void AsciiFormat::setCMPBasicGrid(CMPBasicGrid const& grid) {
  m_grid = grid;
  m_hasGrid = true;
}

int AsciiFormat::getLastHeaderLine() const {
  int last = 0;
  for (Range const& r : m_headerRanges) last = std::max(last, r.last);
  return last;
}

void AsciiFormat::setColumns(int index, int first, int last) {
  if (m_columns.size() < m_attributes.size()) m_columns.resize(m_attributes.size(), Range{0, 0});
  if (index >= 0 && index < static_cast<int>(m_columns.size())) m_columns[index] = Range{first, last};
}

void AsciiFormat::setRecordsAreSingleLine(bool single) {
  if (single) m_kind = SINGLE_LINE;
}

void AsciiFormat::setRecordsAreMultiLine(bool multi) {
  if (multi) m_kind = MULTI_LINE;
}

void AsciiFormat::setNumberOfAttributes(int n) {
  while (static_cast<int>(m_attributes.size()) > n) m_attributes.pop_back();
  while (static_cast<int>(m_attributes.size()) < n)
    m_attributes.push_back(
        Attribute(("COLUMN_" + std::to_string(m_attributes.size() + 1)).c_str(), "", vFLOAT64));
}

void AsciiFormat::setAttributes(std::list<Attribute> const& attributes) {
  m_attributes = attributes;
  m_formats.clear();
  m_columns.clear();
}

// --- the built-in formats -----------------------------------------------------------------

vString AsciiFormat::getDirectory() {
  static vString const directory = vUtl::supportFilesDirectory() + "Capi" + "/";
  return directory;
}

vString AsciiFormat::getFormatIdentifier(char const* text) {
  std::string const s(text == nullptr ? "" : text);
  for (Recognised const& r : kRecognised)
    if (s.find(r.first) != std::string::npos && (r.second == nullptr || s.find(r.second) != std::string::npos))
      return vString(r.root);
  return vString();
}

vFilename AsciiFormat::getSpecification(char const* text) {
  vString const root = getFormatIdentifier(text);
  if (root.isBlank()) return vFilename();
  return vFilename(getDirectory() + root + ".txf");
}

vFilename AsciiFormat::getSpecification(vFilename const& file) {
  std::ifstream in(file.c_str(), std::ios::binary);
  if (!in) return vFilename();
  char start[257] = {};
  in.read(start, 256);
  return getSpecification(static_cast<char const*>(start));
}

std::vector<vFilename> AsciiFormat::getSpecifications() {
  std::vector<std::string> names;
  vString const directory = getDirectory();
  if (DIR* dir = ::opendir(directory.c_str())) {
    while (dirent* entry = ::readdir(dir)) {
      std::string const name = entry->d_name;
      if (name.size() > 4 && name.compare(name.size() - 4, 4, ".txf") == 0) names.push_back(name);
    }
    ::closedir(dir);
  }
  std::sort(names.begin(), names.end());
  std::vector<vFilename> out;
  for (std::string const& name : names) out.push_back(vFilename(directory + name.c_str()));
  return out;
}

bool AsciiFormat::isNumber(char const* text) { return ascii_text::isNumber(text); }
