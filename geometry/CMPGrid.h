#ifndef GEOMETRY_CMPGRID_H
#define GEOMETRY_CMPGRID_H

// CMPGrid: a CMPBasicGrid that can be kept in a store, as properties of the
// store (by convention one of class "grid" and subclass "cmp", made by
// createGridStore). A store holds a grid when it carries the mandatory
// properties; the number of CMPs reserved per CMP line is optional and
// defaults to no padding.

#include <functional>

#include "foundation/vHandle.h"
#include "foundation/vLCString.h"
#include "geometry/CMPBasicGrid.h"

class FullStoreName;
class Project;
class Store;
class StoreDescription;

class CMPGrid : public CMPBasicGrid {
 public:
  using CMPBasicGrid::CMPBasicGrid;
  CMPGrid() = default;
  explicit CMPGrid(CMPBasicGrid const& grid) : CMPBasicGrid(grid) {}
  // The grid of an open store.
  explicit CMPGrid(Store const& store);
  // The grid of a grid store, opened for reading (a live in-memory store is
  // read as it is).
  explicit CMPGrid(StoreDescription const& description);
  explicit CMPGrid(FullStoreName const& name);
  CMPGrid(vHandle<Project> const& project, vLCString const& storeName, int version);

  static bool containsGrid(Store const& store);
  // Fatal for a store without a grid.
  void loadFromStore(Store const& store);
  // Replaces the grid properties of the store with this grid's.
  void addToStore(Store& store) const;

  // A new grid store, or an existing one opened for update, that holds this
  // grid when the call returns.
  void createGridStore(StoreDescription const& description) const;
  void createGridStore(FullStoreName const& name) const;
  void createGridStore(vHandle<Project> const& project, vLCString const& storeName, int version) const;
  void createGridStore(vHandle<Project> const& project, FullStoreName const& name) const;
  void updateGridStore(StoreDescription const& description) const;
  void updateGridStore(FullStoreName const& name) const;
  void updateGridStore(vHandle<Project> const& project, vLCString const& storeName, int version) const;
  void updateGridStore(vHandle<Project> const& project, FullStoreName const& name) const;

  static vLCString const GRID_CLASS;
  static vLCString const GRID_SUBCLASS;

 private:
  void myWriteGridStore(StoreDescription const& description, bool create) const;
  void myWriteGridStore(vHandle<Project> const& project, vString const& title,
                        std::function<void(Store&)> const& openStore) const;
  void myLoadFrom(vHandle<Store> const& store);
};

#endif
