#ifndef NATIVE_MAPDATAREADER_H
#define NATIVE_MAPDATAREADER_H

// MapdataReader: what a map needs of a store, an x, a y, a value to colour
// by and a locator, picked from the attribute names in a fixed order of
// preference, and their columns as plain arrays.
//
// The name passes look at seismic stores only: XVAL/YVAL/ATVAL (or
// STATIC) first, then X/Y/Z, then XCOORD/YCOORD with TIME, DEPTH or
// CMP.FOLD, then XLINE (or CROSSLINE)/INLINE. A store of any class can name
// its own choice in the properties XYZ_PLOT_ATTRIBUTES and
// LOCATOR_ATTRIBUTE, which win over every name. A seismic time slice is
// looked at through a TimesliceToMapdataDecorator, as the grid it shows.
//
// The reader is valid when all four chosen attributes are numeric scalars
// or vectors of the types vINT32, vFLOAT32, vINT64, vFLOAT64; otherwise its
// names stay blank. It reports nothing: the caller decides.

#include <list>
#include <vector>

#include "attribute/Attribute.h"
#include "foundation/vString.h"
#include "foundation/vUCString.h"
#include "native/StoreClassReader.h"

class MapdataReader : public StoreClassReader {
 public:
  explicit MapdataReader(vHandle<Store> const& store);
  ~MapdataReader() override;

  bool isValid() const override;

  // The names of the attributes of length 1 seen by the seismic passes.
  std::vector<vUCString> const& getNames() const;
  // x, y, value, locator; blank for an invalid reader.
  void getNames(vString& x, vString& y, vString& value, vString& locator) const;
  // All instances of x, y and value; nothing for an invalid reader.
  void getData(std::vector<double>& x, std::vector<double>& y, std::vector<float>& value) const;
  // All instances of each named attribute the store has, in the order
  // asked; names the store lacks are passed over.
  void getData(std::vector<vUCString> const& names, std::list<Attribute>& out) const;

  // The store looked at: the one given, or the view over a time slice.
  vHandle<Store> const& getStore() const { return m_store; }

 protected:
  void myFindPlotAttributes();
  bool myIsValidAttribute(std::list<Attribute> const& attributes, vUCString const& name) const;
  static void myCopyToFloat64(Attribute const& attribute, unsigned int n, std::vector<double>& out);
  static void myCopyToFloat32(Attribute const& attribute, unsigned int n, std::vector<float>& out);

 private:
  vUCString m_x;
  vUCString m_y;
  vUCString m_value;
  vUCString m_locator;
  std::vector<vUCString> m_scalarNames;
  bool m_valid;
};

#endif
