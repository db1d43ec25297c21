#ifndef PROJECT_STORECREATIONOPTIONS_H
#define PROJECT_STORECREATIONOPTIONS_H

// StoreCreationOptions: what a creator tells a back end that the store name
// and key list do not: the primary attribute set's name, compression, the
// offset range and the grid of a seismic volume, a list of attributes to lay
// out, a file name, and the data type of a Kelp store.
//
// Packed form: frame 6653, version 5: primary attribute set name; has grid,
// six grid ints, two grid floats; has offsets, two offset doubles, number of
// offsets; compressed; a bool telling that an attribute list follows and, if
// true, the list; a bool telling that a file name follows and, if true, the
// name as a string; the Kelp data type as an int. An older frame holds only
// the fields of its version; unpack resets everything first.

#include <list>
#include <memory>

#include "attribute/Attribute.h"
#include "foundation/Packable.h"
#include "foundation/vFilename.h"
#include "foundation/vLCString.h"

class StoreCreationOptions : public Packable {
 public:
  static const short Magic = 6653;
  static const short Version = 5;

  // The kinds of data a Kelp store is made for; anything else is none.
  enum KelpDataType {
    KELP_NONE = 0,
    KELP_SEISMIC = 1,
    KELP_HORIZON = 2,
    KELP_WELL = 3
  };

  StoreCreationOptions();
  StoreCreationOptions(StoreCreationOptions const& other);
  StoreCreationOptions& operator=(StoreCreationOptions const& other);
  ~StoreCreationOptions() override;

  void setPrimaryAttributeSetName(vLCString const& name) { m_primaryAttributeSetName = name; }
  vLCString const& getPrimaryAttributeSetName() const { return m_primaryAttributeSetName; }

  bool isCompressed() const { return m_compressed; }
  void setCompressed() { m_compressed = true; }

  // Offsets: minimum, maximum and their number. Setting them raises the
  // has-offsets flag.
  bool hasOffsets() const { return m_hasOffsets; }
  void setOffsets(double minimum, double maximum, int count);
  void getOffsets(double& minimum, double& maximum, int& count) const;

  // The grid: six integers and two floats, passed through to the back end
  // that lays out the volume. Setting it raises the has-grid flag.
  bool hasGrid() const { return m_hasGrid; }
  void setGrid(int i1, int i2, int i3, int i4, int i5, int i6, float f1, float f2);
  void getGrid(int& i1, int& i2, int& i3, int& i4, int& i5, int& i6, float& f1, float& f2) const;

  void setAttributeList(std::list<Attribute> const& attributes) { m_attributes = attributes; }
  std::list<Attribute> const& getAttributeList() const { return m_attributes; }

  void setFilename(vFilename const& file);
  // The file name; an empty one when none was set.
  vFilename getFilename() const;
  bool hasFilename() const { return m_filename != nullptr; }

  // Only KELP_SEISMIC, KELP_HORIZON and KELP_WELL are kept; any other value
  // stores KELP_NONE.
  void setKelpDataType(int type);
  KelpDataType getKelpDataType() const { return m_kelpDataType; }

  bool operator==(StoreCreationOptions const& other) const;
  bool operator!=(StoreCreationOptions const& other) const { return !(*this == other); }

  void pack(Packer& packer) const override;
  void unpack(Packer& packer) override;

 private:
  void myReset();

  vLCString m_primaryAttributeSetName;
  bool m_compressed;
  bool m_hasOffsets;
  double m_minOffset;
  double m_maxOffset;
  int32_t m_nOffsets;
  bool m_hasGrid;
  int32_t m_grid[6];
  float m_gridF[2];
  std::list<Attribute> m_attributes;
  std::unique_ptr<vFilename> m_filename;
  KelpDataType m_kelpDataType;
};

#endif
