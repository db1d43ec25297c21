#ifndef FILESTORE_SHAPEFILE_SHAPEFILEWRITER_H
#define FILESTORE_SHAPEFILE_SHAPEFILEWRITER_H

// ShapefileWriter: gathers the shapes and .dbf columns of a new shapefile
// and writes the .shp, .shx and .dbf files, and a .prj file when there is
// a coordinate system text, at write(). The shape type comes from the
// store class and subclass it is made for (see Shapefile). Polygon rings
// are put in the winding order the format wants (outer rings clockwise,
// holes counter-clockwise) on the way out.
//
// Columns: vSTRING as text as wide as the longest value; vINT16 and vINT32
// as 11-digit numbers; vINT64 as 20-digit numbers; vFLOAT32 and vFLOAT64
// as 24-wide numbers with 15 decimals. Names are cut to the 10 characters
// a .dbf field name holds. The widths hold every value of the type, so
// GDAL, which goes by width, takes the integers for wider types than they
// are (Integer64, Real).

#include "filestore/shapefile/Shapefile.h"

class ShapefileWriter : public Shapefile {
 public:
  // subClass for the class "shapes": "points", "polylines" or "polygons";
  // storeClass "mapdata" gives PointZ. Fatal for anything else.
  ShapefileWriter(vFilename const& file, vLCString const& storeClass, vLCString const& subClass);
  ~ShapefileWriter() override;

  // A column with a value for every shape.
  void addField(Attribute const& field);
  // Writes the files; fatal, labelled ShapefileWriter::write, when they
  // cannot be made.
  void write();
};

#endif
