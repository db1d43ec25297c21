#include "geometry/CMPGrid.h"

#include <functional>

#include "attribute/KeyList.h"
#include "attribute/Property.h"
#include "foundation/Message.h"
#include "foundation/UtlExcept.h"
#include "project/FullStoreName.h"
#include "project/Project.h"
#include "project/Store.h"
#include "project/StoreDescription.h"
#include "project/StoreFactory.h"

vLCString const CMPGrid::GRID_CLASS("grid");
vLCString const CMPGrid::GRID_SUBCLASS("cmp");

namespace {

char const* const Mandatory[] = {"CROSSLINE_INCREMENT",
                                 "FIRST_CROSSLINE",
                                 "INLINE_INCREMENT",
                                 "FIRST_INLINE",
                                 "NUM_CROSSLINES",
                                 "NUM_INLINES",
                                 "INLINE_INTERVAL",
                                 "CROSSLINE_INTERVAL",
                                 "CMP_INCREMENT",
                                 "FIRST_CMP",
                                 "X_REALWORLD_ORIGIN",
                                 "Y_REALWORLD_ORIGIN",
                                 "X_SURVEY_ORIGIN",
                                 "Y_SURVEY_ORIGIN",
                                 "ROTATION_ANGLE",
                                 "CMP_ORDERING",
                                 "UNITS"};

char const* const PaddedLine = "NUM_BINS_ALONG_ORDERING_WITH_PADDING";
char const* const CMPLineIncrement = "CMPLINE_INCREMENT";
// Written by old tools; only zero is still understood.
char const* const StorageBiases[] = {"X_STORAGE_BIAS", "Y_STORAGE_BIAS"};

Property const& get(Store const& store, char const* name) { return *store.findProperty(vUCString(name)); }

template <class T>
void put(Store& store, char const* name, T value) {
  vUCString const key(name);
  if (store.PropertyI::hasProperty(key)) store.removeProperty(key);
  store.addProperty(Property(key, value));
}

}  // namespace

CMPGrid::CMPGrid(Store const& store) { loadFromStore(store); }

CMPGrid::CMPGrid(StoreDescription const& description) {
  StoreDescription grid(description);
  if (grid.getStoreClass().isBlank()) grid.setStoreClass(GRID_CLASS);
  myLoadFrom(StoreFactory::openStore(grid, vLCString(), nullptr));
}

CMPGrid::CMPGrid(FullStoreName const& name) : CMPGrid(StoreDescription(name)) {}

CMPGrid::CMPGrid(vHandle<Project> const& project, vLCString const& storeName, int version) {
  vHandle<Store> store = StoreFactory::create(project);
  store->open(storeName, version, GRID_CLASS, vLCString(), nullptr);
  myLoadFrom(store);
}

void CMPGrid::myLoadFrom(vHandle<Store> const& store) { loadFromStore(*store); }

bool CMPGrid::containsGrid(Store const& store) {
  for (char const* name : Mandatory)
    if (!store.PropertyI::hasProperty(vUCString(name))) return false;
  return true;
}

void CMPGrid::loadFromStore(Store const& store) {
  char const* label = "CMPGrid::loadFromStore()";
  if (!containsGrid(store))
    Message::fatal(label, 0, "Store %s does not contain a proper grid.", store.getName().c_str());
  for (char const* name : StorageBiases)
    if (store.PropertyI::hasProperty(vUCString(name)) && get(store, name).getFloat64() != 0.0)
      Message::fatal(label, 0, "The X & Y storageBias in grid stores is obsolete. Do not use!!!");

  vString const ordering = get(store, "CMP_ORDERING").getString();
  int order = ordering == vString("ALONG_CROSSLINES") ? ALONG_CROSSLINES : ALONG_INLINES;
  if (ordering != vString("ALONG_INLINES") && ordering != vString("ALONG_CROSSLINES"))
    order = get(store, "CMP_ORDERING").getInt32();
  int const numInlines = get(store, "NUM_INLINES").getInt32();
  int const numCrosslines = get(store, "NUM_CROSSLINES").getInt32();
  int const unpadded = order == ALONG_CROSSLINES ? numInlines : numCrosslines;
  int const cmpIncrement = get(store, "CMP_INCREMENT").getInt32();
  int padded = unpadded;
  if (store.PropertyI::hasProperty(vUCString(PaddedLine)))
    padded = get(store, PaddedLine).getInt32();
  else if (store.PropertyI::hasProperty(vUCString(CMPLineIncrement)) && cmpIncrement != 0)
    padded = get(store, CMPLineIncrement).getInt32() / cmpIncrement;

  CMPBasicGrid grid(
      get(store, "FIRST_CMP").getInt32(), cmpIncrement, get(store, "FIRST_INLINE").getInt32(),
      get(store, "INLINE_INCREMENT").getInt32(), numInlines, get(store, "FIRST_CROSSLINE").getInt32(),
      get(store, "CROSSLINE_INCREMENT").getInt32(), numCrosslines, padded,
      vCoordinate(get(store, "X_REALWORLD_ORIGIN").getFloat64(), get(store, "Y_REALWORLD_ORIGIN").getFloat64()),
      get(store, "INLINE_INTERVAL").getFloat32(), get(store, "CROSSLINE_INTERVAL").getFloat32(),
      get(store, "ROTATION_ANGLE").getFloat64(), order,
      vCoordinate(get(store, "X_SURVEY_ORIGIN").getFloat64(), get(store, "Y_SURVEY_ORIGIN").getFloat64()));
  grid.setUnits(get(store, "UNITS").getString() != vString("FEET"));
  CMPBasicGrid::operator=(grid);
}

void CMPGrid::addToStore(Store& store) const {
  put(store, "CROSSLINE_INCREMENT", m_crosslineIncrement);
  put(store, "FIRST_CROSSLINE", m_firstCrossline);
  put(store, "INLINE_INCREMENT", m_inlineIncrement);
  put(store, "FIRST_INLINE", m_firstInline);
  put(store, "NUM_CROSSLINES", m_numCrosslines);
  put(store, "NUM_INLINES", m_numInlines);
  put(store, "INLINE_INTERVAL", m_inlineInterval);
  put(store, "CROSSLINE_INTERVAL", m_crosslineInterval);
  put(store, "CMP_INCREMENT", m_cmpIncrement);
  put(store, "FIRST_CMP", m_firstCMP);
  put(store, "X_REALWORLD_ORIGIN", m_realWorldOrigin.getX());
  put(store, "Y_REALWORLD_ORIGIN", m_realWorldOrigin.getY());
  put(store, "X_SURVEY_ORIGIN", m_surveyOrigin.getX());
  put(store, "Y_SURVEY_ORIGIN", m_surveyOrigin.getY());
  put(store, "ROTATION_ANGLE", m_rotationAngle);
  put(store, "CMP_ORDERING", m_ordering == ALONG_INLINES ? "ALONG_INLINES" : "ALONG_CROSSLINES");
  put(store, "UNITS", m_units ? "METERS" : "FEET");
  put(store, PaddedLine, m_numBinsAlongOrderingWithPadding);
  put(store, CMPLineIncrement, getCMPLineInc());
}

void CMPGrid::myWriteGridStore(StoreDescription const& description, bool create) const {
  try {
    StoreDescription grid(description);
    grid.setStoreClass(GRID_CLASS);
    vHandle<Store> store = create ? StoreFactory::createStore(grid, GRID_SUBCLASS, KeyList(), nullptr)
                                  : StoreFactory::updateStore(grid, vLCString(), nullptr);
    addToStore(*store);
    store->flush();
  } catch (UtlExcept const& e) {
    Message::fatal("CMPGrid::createGridStore", 0, "Requested Grid '%s' could not be created.%d %s",
                   description.toString().c_str(), e.getLineNumber(), e.getReason().c_str());
  }
}

void CMPGrid::myWriteGridStore(vHandle<Project> const& project, vString const& title,
                               std::function<void(Store&)> const& openStore) const {
  try {
    vHandle<Store> store = StoreFactory::create(project);
    openStore(*store);
    addToStore(*store);
    store->flush();
  } catch (UtlExcept const& e) {
    Message::fatal("CMPGrid::createGridStore", 0, "Requested Grid '%s' could not be created.%d %s", title.c_str(),
                   e.getLineNumber(), e.getReason().c_str());
  }
}

void CMPGrid::createGridStore(StoreDescription const& description) const { myWriteGridStore(description, true); }

void CMPGrid::createGridStore(FullStoreName const& name) const { myWriteGridStore(StoreDescription(name), true); }

void CMPGrid::createGridStore(vHandle<Project> const& project, vLCString const& storeName, int version) const {
  (void)version;  // a new store is always the newest version
  myWriteGridStore(project, storeName, [&storeName](Store& store) {
    store.create(storeName, GRID_CLASS, GRID_SUBCLASS, KeyList(), nullptr);
  });
}

void CMPGrid::createGridStore(vHandle<Project> const& project, FullStoreName const& name) const {
  myWriteGridStore(project, name.getFullName(),
                   [&name](Store& store) { store.create(name, GRID_CLASS, GRID_SUBCLASS, KeyList(), nullptr); });
}

void CMPGrid::updateGridStore(StoreDescription const& description) const { myWriteGridStore(description, false); }

void CMPGrid::updateGridStore(FullStoreName const& name) const { myWriteGridStore(StoreDescription(name), false); }

void CMPGrid::updateGridStore(vHandle<Project> const& project, vLCString const& storeName, int version) const {
  myWriteGridStore(project, storeName, [&storeName, version](Store& store) {
    store.update(storeName, version, GRID_CLASS, vLCString(), nullptr);
  });
}

void CMPGrid::updateGridStore(vHandle<Project> const& project, FullStoreName const& name) const {
  myWriteGridStore(project, name.getFullName(),
                   [&name](Store& store) { store.update(name, GRID_CLASS, vLCString(), nullptr); });
}
