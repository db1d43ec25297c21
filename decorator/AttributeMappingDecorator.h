#ifndef DECORATOR_ATTRIBUTEMAPPINGDECORATOR_H
#define DECORATOR_ATTRIBUTEMAPPINGDECORATOR_H

// AttributeMappingDecorator: a store shown under another attribute schema.
// Each attribute of the view is an arithmetic expression over attributes
// of the store below (ParserInfo), or an attribute of the store taken over
// as it is ("!ADD", "!PRESERVE"). Expressions come one at a time or from a
// mapping file ("cstf"), a line each:
//
//   ; comment                  # comment
//   NAME[:type] = EXPRESSION   type: f float float32 d double float64 i
//                              int int32 int64, or a type name
//   !STORECLASS class          !STORESUBCLASS subclass
//   !KEYLIST names             !ADD names        !PRESERVE names
//
// A name without a type takes the definition of the vocabulary, or a
// single Float32. Expressions are collected until the view is first used
// (open, a read, a question about its attributes); from then on the schema
// is fixed until clearExpressions().
//
// Read, the view is read-only and its instances are those of the store
// below. Created (write mode), what is written through writeIMSRange and
// writeIMSList is computed into a store made at the first write; other
// writes, creation by name and update are refused.

#include <list>
#include <vector>

#include "decorator/StoreDecorator.h"
#include "filestore/disk/AttributeSetIndexingTable.h"
#include "foundation/vFilename.h"
#include "foundation/vHandle.h"
#include "foundation/vLCString.h"

class StoreDescription;

class AttributeMappingDecorator : public StoreDecorator {
 public:
  class LocalData;
  class ParserInfo;

  explicit AttributeMappingDecorator(vHandle<Store> const& store);
  ~AttributeMappingDecorator() override;

  // One line of the grammar above.
  void processExpression(vString const& expression);
  void processExpression(char const* expression) { processExpression(vString(expression)); }
  // Every line of a mapping file.
  void processExpression(vFilename const& file);
  void clearExpressions();

  // The mapping file for name: name itself when it exists; otherwise its
  // last part with the extension "cstf" (added when it has none) in each of
  // directories in turn. False when none exists; the candidates tried are
  // in getTriedFilenames(). The first form looks in the system files
  // directory; the second beside the store file and then in the system
  // files, and a blank name stands for the store file's own name.
  static bool resolveMapFilename(vString const& name, vFilename& found);
  static bool resolveMapFilename(vFilename const& store, vString const& name, vFilename& found);
  static bool myResolveMapFilename(vString const& name, std::vector<vString> const& directories, vFilename& found);
  static std::list<vString> const& getTriedFilenames();

  // Write mode: the store of description is made at the first write, with
  // the attributes the expressions compute from what is written
  // (writeIMSRange, writeIMSList). Expressions follow this call; their
  // variables name attributes of the written sets.
  virtual void create(StoreDescription const& description, vLCString const& attributeSetName, KeyList const& keys,
                      StoreCreationOptions const* options);
  void create(vLCString const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
              StoreCreationOptions const* options) override;
  void create(FullStoreName const& name, vLCString const& className, vLCString const& subClass, KeyList const& keys,
              StoreCreationOptions const* options) override;
  void open(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;
  void open(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
            StoreOpenOptions const* options) override;
  void update(vLCString const& name, int version, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;
  void update(FullStoreName const& name, vLCString const& className, vLCString const& subClass,
              StoreOpenOptions const* options) override;
  vLCString getClass() const override;
  vLCString getSubClass() const override;
  void close() override;
  KeyList getKeyList() const override;
  void getKeyList(KeyList& keys) const override;
  void addInstances(unsigned int count) override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& groups, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;
  void addAttribute(Attribute const& attribute) override;
  void getUnique(Attribute& attribute, vUtlSort::SortOrder::SortOrderType order) const override;
  std::list<Attribute> getAttributeList() const override;
  void getAttributeList(std::list<Attribute>& attributes) const override;
  std::list<Attribute> getAttributeList(vUCString const& text, AttributeMatch::AttributeMatchType match) const override;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;
  void read(Attribute& attribute, Attribute const& groups, unsigned int firstGroup,
            unsigned int lastGroup) const override;
  void read(Attribute& attribute, KeyList const& keys) const override;
  Attribute getAttribute(vUCString const& name) const override;
  bool hasAttribute(vUCString const& name) const override;
  unsigned int getNAttributes() const override;
  void getGroupsAndSizes(Attribute& attribute, std::vector<unsigned int>& sizes,
                         vUtlSort::SortOrder::SortOrderType order) const override;
  void openAttributeSet(vLCString const& name) override;
  void writeIMSRange(InMemoryStore const& source, unsigned int first, unsigned int last) override;
  void writeIMSList(InMemoryStore const& source, std::vector<unsigned int> const& instances) override;

  bool isValidated() const { return m_validated; }

 private:
  void myAddExpressionForRead(vString const& line);
  void myAddExpressionForWrite(vString const& line);
  void myAddExpression(char const* label, vString const& line);
  // The instances of source first to last (checked), or those listed.
  std::vector<unsigned int> myWriteRange(AttributeSet const& source, unsigned int first, unsigned int last) const;
  // Closes the collection of expressions and builds the schema.
  void myOpen() const;
  [[noreturn]] static void myRefuse(char const* label);

  mutable bool m_validated;
  bool m_opened;
  bool m_writeMode;
  vHandle<LocalData> m_localData;
  vLCString m_filename;
  mutable vHandle<AttributeSetIndexingTable> m_indexingTable;
};

#endif
