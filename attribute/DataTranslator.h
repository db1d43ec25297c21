#ifndef ATTRIBUTE_DATATRANSLATOR_H
#define ATTRIBUTE_DATATRANSLATOR_H

// DataTranslator: one line of a translation table. It pairs an attribute as
// a foreign naming scheme knows it (the Dorn attribute: the client's name,
// type and length) with the attribute of the definition table it stands for
// (the Capi attribute, in which attribute sets hold their data), and carries
// a converter chain for each direction.
//
// A conversion builds the other side's definition, copies length, sample
// rate and first time from the argument, and runs the data through the
// converter without copying them on the way in. When the converter hands
// the block on unchanged, the result takes over the argument's block (and
// its data handler) instead of copying it; the argument then ends without
// instances. The const forms leave the argument as it was.
//
// Without a converter, and for text data (which no converter takes), data
// pass unchanged; their type must then be the target's.

#include "attribute/Attribute.h"
#include "attribute/DataConverterI.h"
#include "foundation/vHandle.h"

class DataTranslator {
 public:
  DataTranslator(Attribute const& dorn, vHandle<DataConverterI> const& toCapi, vHandle<DataConverterI> const& toDorn,
                 Attribute const& capi);
  virtual ~DataTranslator();

  virtual Attribute convertToCapi(Attribute& attribute) const;
  virtual Attribute convertToCapi(Attribute const& attribute) const;
  virtual Attribute convertToDorn(Attribute& attribute) const;
  // Same variable-length kind and same vector kind as the Dorn (Capi)
  // attribute.
  virtual bool isDornCompatible(Attribute const& attribute) const;
  virtual bool isCapiCompatible(Attribute const& attribute) const;

  DataType getDornType() const { return m_dorn->getDataType(); }
  DataType getCapiType() const { return m_capi->getDataType(); }
  vUCString const& getDornName() const { return m_dorn->getName(); }
  vUCString const& getCapiName() const { return m_capi->getName(); }
  // The class that links both sides.
  vUCString const& getAttributeClass() const { return m_capi->getClass(); }
  // The Capi (Dorn) attribute; when reference names the attribute class,
  // the copy takes the reference's name.
  Attribute getCapiAttribute(Attribute const* reference = nullptr) const;
  Attribute getDornAttribute(Attribute const* reference = nullptr) const;

  // The instances of source go to target, which keeps its definition; both
  // must hold one data type. moveData takes the block (and its keeper) and
  // leaves source without instances; copyData copies them.
  static void moveData(Attribute& source, Attribute& target);
  static void copyData(Attribute const& source, Attribute& target);

  vHandle<DataConverterI> const& getToCapiConverter() const { return m_toCapi; }
  vHandle<DataConverterI> const& getToDornConverter() const { return m_toDorn; }

 protected:
  void myConvertData(Attribute& source, vHandle<DataConverterI> const& converter, Attribute& target) const;
  void myConvertData(Attribute const& source, vHandle<DataConverterI> const& converter, Attribute& target) const;

 private:
  DataTranslator(DataTranslator const&) = delete;
  DataTranslator& operator=(DataTranslator const&) = delete;

  // The target definition of a conversion to Capi: the data type goes back
  // to the argument's original one when the converter restores originals.
  Attribute myCapiTarget(Attribute const& attribute) const;

  vHandle<Attribute> m_dorn;
  vHandle<Attribute> m_capi;
  vHandle<DataConverterI> m_toCapi;
  vHandle<DataConverterI> m_toDorn;
};

#endif
