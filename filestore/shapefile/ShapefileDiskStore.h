#ifndef FILESTORE_SHAPEFILE_SHAPEFILEDISKSTORE_H
#define FILESTORE_SHAPEFILE_SHAPEFILEDISKSTORE_H

// ShapefileDiskStore: an ESRI shapefile as a store. Its instances are the
// shapes, numbered from 1. Points, polylines and polygons (class "shapes")
// have the vFLOAT64 attributes X, Y and Z, of length 1 for points and of
// variable length otherwise, the vertices of the shape; polylines and
// polygons also have PART_LENGTHS (vINT32, variable length), the number of
// vertices of each line or ring, holes of a polygon included. PointZ and
// PointM files (class "mapdata") have the vFLOAT32 XVAL, YVAL and ATVAL (Z
// or M) and the vINT32 LOCATOR, the shape's number unless the table holds
// a LOCATOR column. Each column of the .dbf table is one more attribute
// (see ShapefileReader for the types); a column named like one of the
// above is not shown.
//
// The whole file is read at open, so reads are copies out of memory with
// the values converted to the type the caller's attribute asks for. A
// shapefile is made new (create) and written whole: writes of whole
// attributes are kept until close, which writes the .shp, .shx and .dbf
// files (and a .prj from the property "COORDINATE_SYSTEM"). A file opened
// for reading refuses every write.

#include <list>
#include <map>
#include <vector>

#include "attribute/KeyList.h"
#include "filestore/disk/SingleSetDiskStore.h"
#include "filestore/shapefile/ShapefileReader.h"
#include "foundation/vFilename.h"
#include "foundation/vHandle.h"
#include "project/StoreDescription.h"

class ShapefileDiskStore : public SingleSetDiskStore {
 public:
  ShapefileDiskStore();
  explicit ShapefileDiskStore(vHandle<Project> const& project);
  ~ShapefileDiskStore() override;

  using DiskStore::open;
  // A flat file; a description naming the .shx or .dbf opens its .shp.
  virtual void open(StoreDescription const& description);
  virtual void open(vFilename const& file);
  // A new shapefile of the description's store class ("shapes" when blank,
  // or "mapdata") and subclass ("points" when blank, "polylines",
  // "polygons").
  using DiskStore::create;
  virtual void create(StoreDescription const& description, vLCString const& subClass);
  virtual void create(vFilename const& file);
  void close() override;

  unsigned int getNInstances() const override;
  // Checks that the store is open first.
  void openAttributeSet(vLCString const& name) override;
  vLCString getClass() const override { return m_class; }
  vLCString getSubClass() const override { return m_subClass; }

  using DiskStore::read;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;

  // Writing a new file: whole attributes only.
  void addAttribute(Attribute const& attribute) override;
  void addInstances(unsigned int count) override;
  void write(Attribute const& attribute, unsigned int first, unsigned int last) override;
  void write(Attribute const& attribute, std::vector<unsigned int> const& instances) override;
  void write(Attribute const& attribute, Attribute const& key, unsigned int firstGroup,
             unsigned int lastGroup) override;
  void write(Attribute const& attribute, KeyList const& keys) override;

 protected:
  void myRefuseAttributeSet(vLCString const& name) const override;

 private:
  void myCheckWritable(char const* label) const;
  void myAddAttribute(Attribute const& definition);
  void myAddGeometryAttributes();
  void myBuildPropertyList(vString const& coordinateSystem);
  void myAddDBFAttributes(ShapefileReader const& reader);
  void myTakeGeometry(ShapefileReader const& reader);
  Attribute const& myColumn(char const* label, vUCString const& name) const;
  void myCopyOut(Attribute const& column, Attribute& attribute, std::vector<unsigned int> const& instances) const;
  void myDoBufferedWrites();
  void myWritePolygons(class ShapefileWriter& writer) const;
  void myWritePoints(class ShapefileWriter& writer) const;
  // The buffered values of an attribute, or null.
  Attribute const* myBuffered(char const* name) const;

  bool m_created;
  vLCString m_class;
  vLCString m_subClass;
  // Keeps measured map data (21) apart from map data with Z (11).
  int m_shapeType;
  unsigned int m_nInstances;
  // The values of every attribute, all instances; for a new file, what has
  // been written so far.
  std::map<vUCString, Attribute> m_columns;
};

#endif
