#pragma once
// The dictionary KvsDict.bin: legal attributes, types, tables, domains.
// The head is fixed (byte order letter, magic 0x011100BB, 13 counts in
// 8-byte cells); this reader's element tables follow it as 32-byte records:
// name (16), code, and three relations, big-endian:
//   attribute: format code (INT, FLT, DBL, or 0 for text), element length
//   table: domain code, first key attribute, second key attribute
//   domain: first key attribute, second key attribute
//   family, dimension, format, parameter: a name and its code
//   attribute detail: ASCII print format as name, attribute code, family,
//     dimension, the attribute it derives from
//   member: table code, an attribute of its rows
//   subclass: table code, the table class it derives from
#include <cstdint>
#include <string>
#include <vector>

namespace kvs {

constexpr std::uint32_t KvsDictMagic = 0x011100BBu;

struct KvsDtElement {
  std::string name;
  std::uint32_t code = 0, rel1 = 0, rel2 = 0, rel3 = 0;
};

enum KvsDtKind {
  KvsDtAttKind = 0, KvsDtTypKind = 1, KvsDtTabKind = 2, KvsDtDomKind = 3, KvsDtFamKind = 4, KvsDtDimKind = 5,
  KvsDtFmtKind = 6, KvsDtParKind = 7, KvsDtAttDetKind = 8, KvsDtMemberKind = 9, KvsDtSubKind = 10, KvsDtKinds = 13
};

// Reads a dictionary file; -1 when it is missing or malformed.
int _KvsDtLoad(const std::string& path);
// Writes one, for tools and tests.
std::vector<unsigned char> KvsDtBuild(const std::vector<KvsDtElement> (&tables)[4], char order = 'B');
std::vector<unsigned char> KvsDtBuild(const std::vector<KvsDtElement> (&tables)[KvsDtKinds], char order = 'B');
bool KvsDtIsPcOrder();  // the dictionary's byte order letter was "L"

long KvsDtAtt(const char* name);
long KvsDtTyp(const char* name);
long KvsDtTab(const char* name);
long KvsDtDom(const char* name);
const char* KvsDtAttName(long code);
const char* KvsDtTypName(long code);
const char* KvsDtTabName(long code);
const char* KvsDtDomName(long code);
bool KvsDtIsAtt(const char* name);
bool KvsDtIsTyp(const char* name);
bool KvsDtIsTab(const char* name);
bool KvsDtIsDom(const char* name);
long KvsDtAttFmt(long att);  // format code, 0 for text
long KvsDtAttLen(long att);  // element length in bytes
long KvsDtTabDom(long tab);  // the table's domain code
long KvsDtKey1(long tab);
long KvsDtKey2(long tab);
long KvsDtNbKeys(long tab);
bool KvsDtIsKey(long tab, long att);

const char* KvsDtFmtName(long code);
const char* KvsDtFamName(long code);
const char* KvsDtDimName(long code);
const char* KvsDtParName(long code);
// tab is sup or derives from it, through any number of steps.
bool KvsDtIsSubClass(long tab, long sup);
// att is a key of tab or an attribute of tab's rows or of a class it
// derives from.
bool KvsDtIsMember(long tab, long att);
// The domain whose keys are key1 and key2 (0 for none); 0 if none.
long KvsDtKeys2Dom(long key1, long key2);
long KvsDtAttFam(long att);
long KvsDtAttDim(long att);
long KvsDtAttSup(long att);  // the attribute att derives from, 0 if none
// The print format of att's values: the dictionary's, or one that fits its
// value format; null for an unknown attribute.
const char* KvsDtAttAsciiFmt(long att);

}  // namespace kvs
