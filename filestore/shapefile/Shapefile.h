#ifndef FILESTORE_SHAPEFILE_SHAPEFILE_H
#define FILESTORE_SHAPEFILE_SHAPEFILE_H

// Shapefile: the content of an ESRI shapefile held in memory: its shape
// type, the shapes (vertices, and the lengths of the parts of polylines and
// polygons), the columns of its .dbf table, each as an attribute holding a
// value for every shape, and the coordinate system text of its .prj file.
// ShapefileReader fills it from files, ShapefileWriter writes it out.
//
// Shape types map to a store class and subclass: 1 "shapes"/"points",
// 3 "shapes"/"polylines", 5 "shapes"/"polygons", 11 (PointZ) and 21
// (PointM) "mapdata"/"normal". Shapes are numbered from 1.

#include <list>
#include <vector>

#include "attribute/Attribute.h"
#include "foundation/vFilename.h"
#include "foundation/vLCString.h"
#include "foundation/vString.h"

class Shapefile {
 public:
  struct Shape {
    std::vector<double> x, y, z;
    // Lengths of the parts (rings of a polygon, lines of a polyline); one
    // part when empty.
    std::vector<int> parts;
  };

  explicit Shapefile(vFilename const& file);
  virtual ~Shapefile();

  bool isOpen() const { return m_isOpen; }
  vFilename const& getFilename() const { return m_fileName; }
  int getShapeType() const { return m_shapeType; }
  unsigned int getNShapes() const { return static_cast<unsigned int>(m_shapes.size()); }
  Shape const& getShape(unsigned int shape) const { return m_shapes.at(shape - 1); }
  int getLength(unsigned int shape) const { return static_cast<int>(getShape(shape).x.size()); }
  vString const& getCoordinateSystem() const { return m_coordinateSystem; }
  void setCoordinateSystem(vString const& text) { m_coordinateSystem = text; }
  // The .dbf columns, each with a value for every shape.
  std::list<Attribute> const& getFields() const { return m_fields; }

  // Class and subclass of a shape type; fatal, labelled Shapefile, for
  // types not supported.
  static vLCString getStoreClass(int shapeType);
  static vLCString getStoreSubClass(int shapeType);
  // The shape type of a class and subclass, 0 when none fits.
  static int getShapeType(vLCString const& storeClass, vLCString const& subClass);

  // A shape of n vertices (z may be null, parts empty for one part), and a
  // point.
  virtual void addShape(int n, double const* x, double const* y, double const* z = nullptr,
                        std::vector<int> const& parts = std::vector<int>());
  virtual void addShape(double x, double y, double z);

 protected:
  vFilename m_fileName;
  bool m_isOpen;
  int m_shapeType;
  std::vector<Shape> m_shapes;
  std::list<Attribute> m_fields;
  vString m_coordinateSystem;
};

#endif
