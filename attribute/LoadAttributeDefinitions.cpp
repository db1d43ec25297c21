#include "attribute/LoadAttributeDefinitions.h"

#include <climits>
#include <istream>
#include <string>

#include "attribute/Attribute.h"
#include "attribute/AttributeDefinitionTable.h"
#include "foundation/vUCString.h"
#include "foundation/vUtl.h"

LoadAttributeDefinitions::LoadAttributeDefinitions(AttributeDefinitionTable& table) : m_table(table) {}

LoadAttributeDefinitions::~LoadAttributeDefinitions() {}

bool LoadAttributeDefinitions::parseLength(vString const& word, int& length) {
  vString lower(word);
  lower.toLowerCase();
  if (lower == "variable") {
    length = Attribute::VARIABLE_LENGTH;
    return true;
  }
  if (lower == "vector") {
    length = Attribute::VECTOR_LENGTH;
    return true;
  }
  char const* p = word.c_str();
  if (*p == '\0') return false;
  long long value = 0;
  for (; *p != '\0'; ++p) {
    if (*p < '0' || *p > '9') return false;
    value = value * 10 + (*p - '0');
    if (value > INT_MAX) return false;
  }
  length = static_cast<int>(value);
  return true;
}

DataType LoadAttributeDefinitions::parseDataType(vString const& word) {
  DataType const type = vUtl::dataTypeFromName(word);
  switch (type) {
    case vINT16:
    case vINT32:
    case vINT64:
    case vFLOAT32:
    case vFLOAT64:
    case vSTRING:
      return type;
    default:
      return vNOTYPE;
  }
}

void LoadAttributeDefinitions::doLoad(std::istream& in, vString const&) {
  std::string name, type, length;
  while (in >> name >> type >> length) {
    DataType const dataType = parseDataType(vString(type.c_str()));
    int n = 0;
    if (dataType == vNOTYPE || !parseLength(vString(length.c_str()), n)) continue;
    vUCString const upper(name.c_str());
    m_table.addDefinition(Attribute(upper, upper, dataType, n, 0.0, 0.0));
  }
}
