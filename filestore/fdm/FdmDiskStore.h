#ifndef FILESTORE_FDM_FDMDISKSTORE_H
#define FILESTORE_FDM_FDMDISKSTORE_H

// FdmDiskStore: an FDM velocity volume as a read-only store. Its instances
// are the bins of the volume's grid, crosslines fastest; each holds one
// velocity trace along Z, named by the store's type text, and the bin's
// CROSSLINE and INLINE, which are the keys.
//
// The format spec "subclass/intrp/N" (or "subclass/asis") names the
// subclass and, with "intrp" and a whole number N, switches interpolation
// on: a trace is then loaded bilinearly at its bin's survey position
// rather than taken from the nearest section. N is kept (getInterpolation)
// and does not change the loading. The type text is the subclass; it picks
// the attribute by its ending ("time_rms", "time_interval", "time_foc"),
// so "gridded_time_rms" and "time_rms" both give VELTRACE.RMS.
//
// The grid: crossline and inline numbers from the header's minimum lines
// and increments, survey x along the crosslines at the header's spatial
// crossline origin and increment, survey y likewise for inlines, rotated
// by the extended header's rotation (degrees unless its angle units say
// radians). Class "velocity".

#include <list>
#include <vector>

#include "attribute/KeyList.h"
#include "filestore/disk/SingleSetDiskStore.h"
#include "filestore/fdm/FdmDiskReader.h"
#include "foundation/vFilename.h"
#include "geometry/CMPBasicGrid.h"
#include "project/StoreDescription.h"

class FdmDiskStore : public SingleSetDiskStore {
 public:
  FdmDiskStore();
  explicit FdmDiskStore(vHandle<Project> const& project);
  ~FdmDiskStore() override;

  static std::vector<vLCString> getFDMSubclassTypes();

  using DiskStore::open;
  virtual void open(StoreDescription const& description);
  virtual void open(vFilename const& file);
  void close() override;
  unsigned int getNInstances() const override;
  Attribute getAttribute(vUCString const& name) const override;
  vLCString getClass() const override { return vLCString("velocity"); }
  vLCString getSubClass() const override { return m_subClass; }

  using DiskStore::read;
  void read(Attribute& attribute, unsigned int first, unsigned int last) const override;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const override;

  vString const& getTypeText() const { return m_typeText; }
  bool isInterpolating() const { return m_interpolate; }
  int getInterpolation() const { return m_interpolation; }
  CMPBasicGrid const& getGrid() const { return m_grid; }
  FdmDiskReader& getReader() const { return m_reader; }

 protected:
  void myRefuseAttributeSet(vLCString const& name) const override;

 private:
  void myBuildLimits();
  void myBuildAttributes();
  // The values of one instance into a row of the attribute.
  void myReadInstance(Attribute& attribute, unsigned int row, unsigned int instance) const;

  bool m_interpolate;
  int m_interpolation;
  vString m_typeText;
  vLCString m_subClass;
  mutable FdmDiskReader m_reader;
  CMPBasicGrid m_grid;
  vUCString m_velocityName;
};

#endif
