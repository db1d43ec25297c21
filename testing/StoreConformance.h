#ifndef TESTING_STORECONFORMANCE_H
#define TESTING_STORECONFORMANCE_H

// The shared conformance suite of the store contract (AttributeSet). Every
// back end and every view instantiates it once, with factories that hand
// out stores holding the reference content below. The suite checks:
//
//   reads    by range (1-based, inclusive; a last of 0 passes the check as
//            the last instance), by list (in list order, repeats, empty),
//            by selector groups (groups counted in ascending order of the
//            selector's values; a last group of 0 reads through the last
//            group) and by key values; group questions (getUnique,
//            getGroupsAndSizes, both orders); matching by class
//   failures instance 0 and ranges past the end for range, list and group
//            reads; an unknown attribute; key values not found; each with
//            its exact reason
//   guards   every write form (range, list, groups, keys, addInstances,
//            addAttribute) refused on a store opened for reading, leaving
//            the data as they were; every read form refused on a store never
//            opened (when the case makes one)
//   writes   by range, list, groups and keys, new instances and attributes,
//            a new attribute class, with the range faults of writes (when
//            the case opens a store for update); and, where the case can
//            reopen a store, the same rows after a close and reopen
//
// The reference content (StoreConformance::populate writes it through the
// contract into a freshly created store): 12 instances and
//
//   CDP     vINT32   length 1, class "CDP"     1 1 1 2 2 2 3 3 3 4 4 4
//   OFFSET  vINT32   length 1, class "OFFSET"  100 200 300, repeated
//   ELEV    vFLOAT64 length 1, class blank     1000 + 0.5 * instance
//   TRACE   vFLOAT32 length 5, rate 4, class "TRACE"
//                                              10 * instance + sample (1-5)
//
// with the key list CDP, OFFSET. A store that cannot hold all of these
// names the ones it holds in StoreConformanceCase::attributes; CDP is
// always needed (group and key reads use it), and OFFSET for key reads and
// writes, which are skipped without it.
//
// How a back end or a view instantiates the suite. In one of its
// *_test.cpp files:
//
//   #include "testing/StoreConformance.h"
//
//   namespace {
//   StoreConformanceCase myCase() {
//     StoreConformanceCase c("MyBackEnd");       // letters, digits, '_'
//     // Required: a store of its own, opened for reading, holding the
//     // reference content. A back end that can write makes it with
//     // create(...), StoreConformance::populate(store) and close(), then
//     // opens it again; a read-only format writes a reference file in the
//     // format by other means.
//     c.openForReading = [] { ...; return handle; };
//     // Optional: the same opened for update (write tests), and a store
//     // made but never opened (guard tests). Left empty, those tests are
//     // skipped, not failed.
//     c.openForUpdate = [] { ... };
//     c.makeUnopened = [] { ... };
//     // Optional: close a written store and open it again (the write
//     // tests then check that the data outlive the store).
//     c.reopen = [](vHandle<AttributeSet> written) { ...; return reopened; };
//     // Where the back end's reasons differ from the defaults of
//     // StoreConformanceTexts (those of the in-process attribute sets and
//     // of StoreImp), set its own formats with the same arguments:
//     c.texts.notWritable = "...";
//     return c;
//   }
//   }  // namespace
//
//   INSTANTIATE_TEST_SUITE_P(MyBackEnd, StoreConformance, ::testing::Values(myCase()),
//                            StoreConformance::caseName);
//
// and in its folder's CMakeLists.txt add the suite to the test program:
//
//   rondo_subsystem(<name> DEPENDS ... TEST_LIBS rondo_testing_conformance)
//
// The suite's tests live in that library; including this header links them
// in. Each factory call must give a store of its own, since the write tests
// change it. The suite compares the reason of each failure exactly, not its
// method, since every back end labels failures with its own class.

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "attribute/Attribute.h"
#include "attribute/KeyList.h"
#include "foundation/vHandle.h"
#include "project/AttributeSet.h"

// The failure texts the suite expects, as printf formats; the arguments
// are given in the order noted. Group numbers are checked with the three
// range formats, the number of groups standing for the number of
// instances.
struct StoreConformanceTexts {
  // (first)
  std::string firstIsZero = "first instance must be >0, yours was %lld";
  // (first, last)
  std::string firstAfterLast = "first instance %lld must be <= last instance %lld.";
  // (last, number of instances)
  std::string lastPastEnd = "last instance %lld must be <= number of instances %lld.";
  // (attribute)
  std::string listHasZero = "Attribute '%s': the vInstanceList has a zero in it, coont read from instance 0.";
  // (number of instances + 1, attribute, largest instance of the list)
  std::string listPastEnd = "Instance numbers must be <%lld, list for '%s' contained %lld.";
  // (attribute, set name)
  std::string unknownAttribute = "Attribute %s is not in the AttributeSet %s.";
  // (attribute, set name) getAttribute of an unknown name, where a view
  // answers it otherwise than reads; empty: unknownAttribute.
  std::string unknownDefinition;
  // (last group, number of groups) where group numbers are checked with
  // other words than instance numbers; empty: lastPastEnd.
  std::string groupLastPastEnd;
  // (set name, tuples wanted, tuples found)
  std::string keysMissing =
      "Key list has duplicate or missing values in AttributeSet %s. Wanted %lld value(s) but found %lld.";
  // (store name) a write to a store opened for reading
  std::string notWritable = "The store '%s' has not been opened for modification!";
  // (attribute) a read from a store that was never opened
  std::string notOpen = "The store has not been opened yet ... %s";
  // (attribute, instances given, last - first + 1)
  std::string writeCount = "The Attribute '%s' to be written has %lld instances, but last-first+1 is %lld.";
  // (instances in the groups as an int, selector, instances given, attribute)
  std::string groupWriteCount =
      "The number of instances (%d) with groups %s does not match the number of instances (%lld) for Attribute %s "
      "being written.";
  // (instances the keys select, instances given, attribute)
  std::string keyWriteCount =
      "The number of instances (%lld) with keys does not match the number of instances (%lld) for Attribute %s "
      "being written.";
};

struct StoreConformanceCase {
  explicit StoreConformanceCase(std::string caseName = "Store") : name(std::move(caseName)) {}

  // Letters, digits and '_': it names the instantiation's tests.
  std::string name;
  // A store holding the reference content, opened for reading.
  std::function<vHandle<AttributeSet>()> openForReading;
  // The same, opened for update; without it the write tests are skipped.
  std::function<vHandle<AttributeSet>()> openForUpdate;
  // A store made but never opened; without it that test is skipped.
  std::function<vHandle<AttributeSet>()> makeUnopened;
  // Closes a store that a write test changed and gives it back opened for
  // reading, as a later user would find it (for a server back end: after a
  // restart of its server). The write tests then check that it holds the
  // rows it held before the close; rows may come back in an order of the
  // back end's own (by its keys). Without it they check the open store only.
  std::function<vHandle<AttributeSet>(vHandle<AttributeSet> written)> reopen;
  // The store's own names of the reference attributes it keeps under
  // other names (of its own types); the write tests write and read under
  // these. Where it holds the reference content only through a view, the
  // view serves the reads and the store itself the writes.
  std::map<std::string, std::string> ownNames;
  // The name of the Int32 attribute the write tests add: one the store
  // can keep (a back end whose columns come from a dictionary names one
  // of it).
  std::string newAttribute = "CONFORMANCE_NEW";
  // The reference attributes the store holds.
  std::vector<std::string> attributes = {"CDP", "OFFSET", "ELEV", "TRACE"};
  // Whether the store keeps the key list CDP, OFFSET.
  bool hasKeyList = true;
  // Whether the store keeps attribute classes.
  bool hasClasses = true;
  // Tests of the suite (by name, such as "ReadsBySelectorGroups") that do
  // not apply to this store, for a view that refuses a whole form of read
  // by design; they are skipped, not failed.
  std::vector<std::string> notApplicable;
  StoreConformanceTexts texts;
};

void PrintTo(StoreConformanceCase const& c, std::ostream* out);

class StoreConformance : public ::testing::TestWithParam<StoreConformanceCase> {
 public:
  static constexpr unsigned int kNInstances = 12;

  // The reference value of an attribute at an instance and a 1-based
  // position (1 for scalars).
  static double referenceValue(std::string const& attribute, unsigned int instance, int position = 1);
  // The definition of a reference attribute, and the same with all its
  // reference values.
  static Attribute referenceDefinition(std::string const& attribute);
  static Attribute referenceAttribute(std::string const& attribute);
  // CDP, OFFSET (definitions).
  static KeyList referenceKeys();
  // Writes the reference content, all of it or the attributes named, into a
  // store just created (open for writing, empty).
  static void populate(AttributeSet& created,
                       std::vector<std::string> const& attributes = {"CDP", "OFFSET", "ELEV", "TRACE"});

  // The name of an instantiation's tests.
  static std::string caseName(::testing::TestParamInfo<StoreConformanceCase> const& info);

  // Referenced by this header, so that a program that includes it links the
  // suite's tests out of the static library.
  static int linkAnchor();

 protected:
  void SetUp() override;

  bool holds(std::string const& attribute) const;
  // The store's own name of a reference attribute.
  std::string own(std::string const& reference) const;
  // With the case's reopen: the store closed and opened again holds the
  // attributes and rows it held; the handle is then the reopened store.
  void expectSameAfterReopen(vHandle<AttributeSet>& store);
  // The expected text of a failure, from a format of the case's texts.
  static std::string text(char const* format, ...);

  vHandle<AttributeSet> m_store;
};

namespace {
[[maybe_unused]] int const storeConformanceLinked = StoreConformance::linkAnchor();
}

#endif
