#include "filestore/shapefile/Shapefile.h"

#include "foundation/Message.h"

Shapefile::Shapefile(vFilename const& file) : m_fileName(file), m_isOpen(false), m_shapeType(0) {}

Shapefile::~Shapefile() = default;

vLCString Shapefile::getStoreClass(int shapeType) {
  switch (shapeType) {
    case 1:
    case 3:
    case 5:
      return vLCString("shapes");
    case 11:
    case 21:
      return vLCString("mapdata");
    default:
      Message::fatal("Shapefile", 0, "Shape Type %d is not yet supported", shapeType);
  }
}

vLCString Shapefile::getStoreSubClass(int shapeType) {
  switch (shapeType) {
    case 1:
      return vLCString("points");
    case 3:
      return vLCString("polylines");
    case 5:
      return vLCString("polygons");
    case 11:
    case 21:
      return vLCString("normal");
    default:
      Message::fatal("Shapefile", 0, "Shape Type %d is not yet supported", shapeType);
  }
}

int Shapefile::getShapeType(vLCString const& storeClass, vLCString const& subClass) {
  // Map data carry their values as Z, or as measures for the subclass
  // "measured" (read back, like Z, as "normal").
  if (storeClass == vLCString("mapdata")) return subClass == vLCString("measured") ? 21 : 11;
  if (!storeClass.isBlank() && !(storeClass == vLCString("shapes"))) return 0;
  if (subClass.isBlank() || subClass == vLCString("points")) return 1;
  if (subClass == vLCString("polylines")) return 3;
  if (subClass == vLCString("polygons")) return 5;
  return 0;
}

void Shapefile::addShape(int n, double const* x, double const* y, double const* z, std::vector<int> const& parts) {
  Shape shape;
  shape.x.assign(x, x + n);
  shape.y.assign(y, y + n);
  if (z != nullptr)
    shape.z.assign(z, z + n);
  else
    shape.z.assign(static_cast<std::size_t>(n), 0.0);
  shape.parts = parts;
  m_shapes.push_back(std::move(shape));
}

void Shapefile::addShape(double x, double y, double z) { addShape(1, &x, &y, &z); }
