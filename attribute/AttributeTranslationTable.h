#ifndef ATTRIBUTE_ATTRIBUTETRANSLATIONTABLE_H
#define ATTRIBUTE_ATTRIBUTETRANSLATIONTABLE_H

// AttributeTranslationTable: how one foreign naming scheme (the Dorn side,
// the vocabulary a client asks in) maps onto the definition table (the Capi
// side, in which attribute sets hold their data). One table per scheme
// name, loaded from "<name>AttributeTranslations3.txt" when the name is
// first mentioned and kept for the life of the process.
//
// Translators are found through the interned name entries of the attribute
// model, so a look-up hashes a pointer and never compares text: on the Capi
// side by the Capi attribute's name, on the Dorn side by the Dorn
// attribute's class. The first translator entered for a key keeps it.
//
// An attribute no translator knows still converts: towards the Dorn side a
// name that the definition table knows is prefixed "<NAME>." so that the
// client cannot take it for the defined attribute, and towards the Capi side
// that prefix comes off again.
//
// No locks.

#include <cstddef>
#include <deque>
#include <functional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/DataTranslator.h"
#include "foundation/vHandle.h"
#include "foundation/vString.h"
#include "foundation/vUCString.h"

class AttributeTranslationTable {
 public:
  // Dorn name with Capi name.
  typedef std::vector<std::pair<vUCString, vUCString> > NamePairs;

  // The table of that name, made and loaded on first mention. A table whose
  // file cannot be loaded is not kept, so that the next mention tries again.
  static AttributeTranslationTable& instance(vString const& name);
  // name + "AttributeTranslations3.txt".
  static vString buildFileName(vString const& name);

  virtual ~AttributeTranslationTable();

  virtual Attribute convertToCapi(Attribute& attribute);
  virtual Attribute convertToCapi(Attribute const& attribute);
  virtual Attribute convertToDorn(Attribute& attribute);
  virtual bool isCapiNameDifferent(Attribute const& attribute);
  virtual bool isDornNameDifferent(Attribute const& attribute);
  // Drops all translators and reads the file again; translators held
  // elsewhere stay alive with their owners.
  virtual void reload();
  virtual bool isCapiDataChanged(Attribute const& attribute);
  virtual bool isDornDataChanged(Attribute const& attribute);
  // The translator for the way to the Dorn (Capi) side: true when there is
  // one, which then goes to translator; otherwise translator is emptied.
  virtual bool getToDornTranslator(Attribute const& attribute, vHandle<DataTranslator>& translator);
  virtual bool getToCapiTranslator(Attribute const& attribute, vHandle<DataTranslator>& translator);
  // The pairs of names, sorted.
  virtual void getAttributeNamesTranslations(NamePairs& pairs);
  virtual void convertToCapi(Attribute& attribute, vHandle<Attribute>& result);
  virtual void convertToCapi(Attribute const& attribute, vHandle<Attribute>& result);
  virtual void convertToDorn(Attribute& attribute, vHandle<Attribute>& result);

  // Appends a translator. Its position goes under the Capi attribute's
  // name and under the Dorn attribute's class unless either is taken.
  void addTranslation(vHandle<DataTranslator> const& translator);
  vString const& getName() const { return m_name; }
  std::size_t getNTranslators() const { return m_translators.size(); }

 protected:
  explicit AttributeTranslationTable(vString const& name);

  // Clears and loads.
  void init();
  vHandle<DataTranslator> myFindTranslatorByClass(Attribute const& attribute) const;
  vHandle<DataTranslator> myFindToCapiTranslator(Attribute const& attribute) const;
  vHandle<DataTranslator> myFindToDornTranslator(Attribute const& attribute) const;

 private:
  struct EntryHash {
    std::size_t operator()(vUCStringTableData const* entry) const {
      return std::hash<vUCStringTableData const*>()(entry);
    }
  };
  typedef std::unordered_map<vUCStringTableData const*, std::size_t, EntryHash> Positions;

  AttributeTranslationTable(AttributeTranslationTable const&) = delete;
  AttributeTranslationTable& operator=(AttributeTranslationTable const&) = delete;

  void myClear();
  vHandle<DataTranslator> myAt(Positions const& positions, vUCStringTableData const* key) const;
  // The table's name upper-cased, and that with a '.' behind it.
  vUCString myUpperName() const;
  // For a name "<TABLE>.<rest>": true, and the definition renamed <rest>
  // (without data) in stripped.
  bool myStripPrefix(Attribute const& attribute, Attribute& stripped) const;

  std::deque<vHandle<DataTranslator> > m_translators;
  vString m_name;
  Positions m_capiNames;
  Positions m_dornClasses;
  NamePairs m_pairs;
};

#endif
