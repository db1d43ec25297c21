#include "testing/StoreConformance.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <limits>
#include <map>
#include <ostream>

#include "foundation/MessageHandling.h"
#include "foundation/UtlExcept.h"
#include "project/Store.h"

// A program may link the suite without instantiating it (it only wanted
// the helpers); that is not a failure.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(StoreConformance);

namespace {

// Runs f, which must fail with UtlExcept with exactly this reason. The
// reports that failures print are kept quiet.
template <class F>
void expectFailure(F f, std::string const& reason) {
  try {
    MessageHandling quiet;
    f();
    ADD_FAILURE() << "expected the failure: " << reason;
  } catch (UtlExcept const& e) {
    EXPECT_EQ(reason, std::string(e.getReason().c_str())) << "method: " << e.getMethod().c_str();
  }
}

// Reads that must not fail.
template <class F>
void expectSuccess(F f) {
  try {
    MessageHandling quiet;
    f();
  } catch (UtlExcept const& e) {
    ADD_FAILURE() << "unexpected failure: " << e.getReason().c_str() << " (" << e.getMethod().c_str() << ")";
  }
}

std::vector<unsigned int> range(unsigned int first, unsigned int last) {
  std::vector<unsigned int> list;
  for (unsigned int i = first; i <= last; ++i) list.push_back(i);
  return list;
}

int lengthOf(std::string const& attribute) { return attribute == "TRACE" ? 5 : 1; }

}  // namespace

void PrintTo(StoreConformanceCase const& c, std::ostream* out) { *out << c.name; }

int StoreConformance::linkAnchor() { return 1; }

std::string StoreConformance::caseName(::testing::TestParamInfo<StoreConformanceCase> const& info) {
  return info.param.name;
}

// --- reference content ------------------------------------------------------------

double StoreConformance::referenceValue(std::string const& attribute, unsigned int instance, int position) {
  if (attribute == "CDP") return static_cast<double>((instance - 1) / 3 + 1);
  if (attribute == "OFFSET") return static_cast<double>(((instance - 1) % 3 + 1) * 100);
  if (attribute == "ELEV") return 1000.0 + 0.5 * instance;
  if (attribute == "TRACE") return 10.0 * instance + position;
  ADD_FAILURE() << "no reference attribute " << attribute;
  return 0.0;
}

Attribute StoreConformance::referenceDefinition(std::string const& attribute) {
  if (attribute == "CDP") return Attribute("CDP", "CDP", vINT32);
  if (attribute == "OFFSET") return Attribute("OFFSET", "OFFSET", vINT32);
  if (attribute == "ELEV") return Attribute("ELEV", "", vFLOAT64);
  if (attribute == "TRACE") return Attribute("TRACE", "TRACE", vFLOAT32, 5, 4.0, 0.0);
  ADD_FAILURE() << "no reference attribute " << attribute;
  return Attribute();
}

Attribute StoreConformance::referenceAttribute(std::string const& attribute) {
  Attribute a = referenceDefinition(attribute);
  a.resize(kNInstances);
  for (unsigned int i = 1; i <= kNInstances; ++i) {
    for (int k = 1; k <= a.getLength(); ++k) {
      double v = referenceValue(attribute, i, k);
      switch (a.getDataType()) {
        case vINT32:
          a.getInt32Pointer(i)[k - 1] = static_cast<int>(v);
          break;
        case vFLOAT32:
          a.getFloat32Pointer(i)[k - 1] = static_cast<float>(v);
          break;
        default:
          a.getFloat64Pointer(i)[k - 1] = v;
      }
    }
  }
  return a;
}

// Attribute copies carry no data: the reference attributes are filled in
// place by the callers below.
KeyList StoreConformance::referenceKeys() {
  KeyList keys;
  keys.addKey(referenceDefinition("CDP"));
  keys.addKey(referenceDefinition("OFFSET"));
  return keys;
}

void StoreConformance::populate(AttributeSet& created, std::vector<std::string> const& attributes) {
  for (std::string const& name : attributes)
    if (!created.hasAttribute(name.c_str())) created.addAttribute(referenceDefinition(name));
  created.addInstances(kNInstances);
  for (std::string const& name : attributes) {
    Attribute data(referenceDefinition(name));
    data.copyData(referenceAttribute(name));
    created.write(data, 1, kNInstances);
  }
}

// --- fixture ------------------------------------------------------------------------

void StoreConformance::SetUp() {
  std::string test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
  test = test.substr(0, test.find('/'));
  auto const& skipped = GetParam().notApplicable;
  if (std::find(skipped.begin(), skipped.end(), test) != skipped.end())
    GTEST_SKIP() << test << " does not apply to " << GetParam().name;
  ASSERT_TRUE(static_cast<bool>(GetParam().openForReading)) << "the case has no openForReading factory";
  m_store = GetParam().openForReading();
  ASSERT_FALSE(m_store.isEmpty());
  ASSERT_TRUE(m_store->isOpen());
}

bool StoreConformance::holds(std::string const& attribute) const {
  auto const& names = GetParam().attributes;
  return std::find(names.begin(), names.end(), attribute) != names.end();
}

std::string StoreConformance::text(char const* format, ...) {
  char buffer[2048];
  va_list args;
  va_start(args, format);
  std::vsnprintf(buffer, sizeof buffer, format, args);
  va_end(args);
  return buffer;
}

// Instance i of `read` holds reference instance expected[i - 1].
#define EXPECT_INSTANCES(read, name, expected)                                                          \
  do {                                                                                                  \
    std::vector<unsigned int> const expect_ = (expected);                                               \
    ASSERT_EQ(expect_.size(), static_cast<std::size_t>((read).getNInstances())) << (name);              \
    for (unsigned int i_ = 1; i_ <= expect_.size(); ++i_)                                               \
      for (int k_ = 1; k_ <= lengthOf(name); ++k_)                                                      \
        EXPECT_EQ(referenceValue(name, expect_[i_ - 1], k_), (read).getValue(i_, k_))                   \
            << (name) << " instance " << i_ << " position " << k_;                                      \
  } while (0)

// --- reads --------------------------------------------------------------------------

TEST_P(StoreConformance, DescribesTheReferenceContent) {
  AttributeSet const& store = *m_store;
  EXPECT_EQ(kNInstances, store.getNInstances());
  EXPECT_GE(store.getNAttributes(), static_cast<unsigned int>(GetParam().attributes.size()));
  std::list<Attribute> list = store.getAttributeList();
  for (std::string const& name : GetParam().attributes) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(store.hasAttribute(name.c_str()));
    Attribute definition = store.getAttribute(name.c_str());
    Attribute reference = referenceDefinition(name);
    EXPECT_EQ(reference.getDataType(), definition.getDataType());
    EXPECT_EQ(reference.getLength(), definition.getLength());
    EXPECT_EQ(0u, definition.getNInstances()) << "a definition carries no data";
    EXPECT_EQ(1, std::count(list.begin(), list.end(), reference));
  }
  if (holds("TRACE")) {
    EXPECT_EQ(4.0, store.getAttribute("TRACE").getSampleRate());
  }
  EXPECT_FALSE(store.hasAttribute("NO_SUCH_ATTRIBUTE"));
  std::list<Attribute> filledList(1, Attribute("STALE", "", vINT32));
  store.getAttributeList(filledList);
  EXPECT_TRUE(filledList == list);
  if (GetParam().hasKeyList) {
    KeyList keys = store.getKeyList();
    ASSERT_EQ(2u, keys.getNKeys());
    EXPECT_EQ("CDP", std::string(keys.findName(1).c_str()));
    EXPECT_EQ("OFFSET", std::string(keys.findName(2).c_str()));
    KeyList filled;
    store.getKeyList(filled);
    EXPECT_TRUE(filled == keys);
  }
}

TEST_P(StoreConformance, ReadsRangesOneBasedAndInclusive) {
  for (std::string const& name : GetParam().attributes) {
    Attribute a = m_store->getAttribute(name.c_str());
    m_store->read(a, 4, 9);
    EXPECT_INSTANCES(a, name, range(4, 9));
    m_store->read(a, 1, kNInstances);
    EXPECT_INSTANCES(a, name, range(1, kNInstances));
    m_store->read(a, 1, 1);
    EXPECT_INSTANCES(a, name, range(1, 1));
    m_store->read(a, kNInstances, kNInstances);
    EXPECT_INSTANCES(a, name, range(kNInstances, kNInstances));
    // Into the same attribute again, with as many instances as before.
    m_store->read(a, 7, 7);
    EXPECT_INSTANCES(a, name, range(7, 7));
  }
}

TEST_P(StoreConformance, ReadsListsInTheirOrder) {
  for (std::string const& name : GetParam().attributes) {
    Attribute a = m_store->getAttribute(name.c_str());
    m_store->read(a, std::vector<unsigned int>{3, 1, 12, 7});
    EXPECT_INSTANCES(a, name, (std::vector<unsigned int>{3, 1, 12, 7}));
    m_store->read(a, std::vector<unsigned int>{5, 6, 7});
    EXPECT_INSTANCES(a, name, range(5, 7));
    m_store->read(a, std::vector<unsigned int>{2, 2});
    EXPECT_INSTANCES(a, name, (std::vector<unsigned int>{2, 2}));
    m_store->read(a, std::vector<unsigned int>());
    EXPECT_EQ(0u, a.getNInstances()) << name;
  }
}

TEST_P(StoreConformance, ReadsBySelectorGroups) {
  Attribute cdp = m_store->getAttribute("CDP");
  for (std::string const& name : GetParam().attributes) {
    if (name == "CDP") continue;
    Attribute a = m_store->getAttribute(name.c_str());
    // Groups are counted in ascending order of the selector's values.
    m_store->read(a, cdp, 2, 3);
    EXPECT_INSTANCES(a, name, range(4, 9));
    m_store->read(a, cdp, 4, 4);
    EXPECT_INSTANCES(a, name, range(10, 12));
    // A last group of 0 reads through the last group.
    m_store->read(a, cdp, 3, 0);
    EXPECT_INSTANCES(a, name, range(7, 12));
  }
}

TEST_P(StoreConformance, ReadsByKeyValues) {
  if (!holds("OFFSET")) GTEST_SKIP() << "key reads need CDP and OFFSET";
  KeyList keys = referenceKeys();
  int const cdps[] = {2, 4, 1};
  int const offsets[] = {200, 100, 300};
  keys.begin()->copyData(3, cdps);
  (keys.begin() + 1)->copyData(3, offsets);
  for (std::string const& name : GetParam().attributes) {
    Attribute a = m_store->getAttribute(name.c_str());
    m_store->read(a, keys);
    EXPECT_INSTANCES(a, name, (std::vector<unsigned int>{5, 10, 3}));
  }
}

TEST_P(StoreConformance, AnswersGroupQuestions) {
  Attribute cdp = m_store->getAttribute("CDP");
  m_store->getUnique(cdp, vUtlSort::SortOrder::ASCENDING);
  ASSERT_EQ(4u, cdp.getNInstances());
  for (unsigned int i = 1; i <= 4; ++i) EXPECT_EQ(static_cast<double>(i), cdp.getValue(i));
  m_store->getUnique(cdp, vUtlSort::SortOrder::DESCENDING);
  ASSERT_EQ(4u, cdp.getNInstances());
  for (unsigned int i = 1; i <= 4; ++i) EXPECT_EQ(static_cast<double>(5 - i), cdp.getValue(i));

  if (holds("OFFSET")) {
    Attribute offset = m_store->getAttribute("OFFSET");
    std::vector<unsigned int> sizes;
    m_store->getGroupsAndSizes(offset, sizes, vUtlSort::SortOrder::DESCENDING);
    ASSERT_EQ(3u, offset.getNInstances());
    EXPECT_EQ(300.0, offset.getValue(1));
    EXPECT_EQ(200.0, offset.getValue(2));
    EXPECT_EQ(100.0, offset.getValue(3));
    EXPECT_EQ((std::vector<unsigned int>{4, 4, 4}), sizes);
  }
}

TEST_P(StoreConformance, MatchesAttributesByClass) {
  if (!GetParam().hasClasses) GTEST_SKIP() << "the store keeps no classes";
  auto names = [](std::list<Attribute> const& list) {
    std::vector<std::string> out;
    for (Attribute const& a : list) out.push_back(a.getName().c_str());
    std::sort(out.begin(), out.end());
    return out;
  };
  if (holds("OFFSET")) {
    EXPECT_EQ(std::vector<std::string>{"OFFSET"},
              names(m_store->getAttributeList("OFFSET", AttributeMatch::MATCH_CLASS)));
  }
  if (holds("OFFSET") && holds("ELEV")) {
    EXPECT_EQ((std::vector<std::string>{"ELEV", "OFFSET"}),
              names(m_store->getAttributeList("OFFSET", AttributeMatch::MATCH_OR_BLANK_CLASS)));
  }
  EXPECT_TRUE(m_store->getAttributeList("NO_SUCH_CLASS", AttributeMatch::MATCH_CLASS).empty());
}

// --- failures of reads ---------------------------------------------------------------

TEST_P(StoreConformance, RefusesBadRangesWithTheirTexts) {
  StoreConformanceTexts const& t = GetParam().texts;
  long long const n = kNInstances;
  Attribute a = m_store->getAttribute("CDP");
  expectFailure([&] { m_store->read(a, 0, 3); }, text(t.firstIsZero.c_str(), 0LL));
  expectFailure([&] { m_store->read(a, 1, n + 1); }, text(t.lastPastEnd.c_str(), n + 1, n));
  expectFailure([&] { m_store->read(a, 5, 3); }, text(t.firstAfterLast.c_str(), 5LL, 3LL));
  // A last of 0 stands for the last instance in the check.
  expectFailure([&] { m_store->read(a, n + 1, 0); }, text(t.firstAfterLast.c_str(), n + 1, n));
  expectSuccess([&] { m_store->read(a, n, 0); });
  expectSuccess([&] { m_store->read(a, 1, 0); });
}

TEST_P(StoreConformance, RefusesBadGroupNumbersWithTheirTexts) {
  // Group numbers are checked as instance numbers are, against the number
  // of groups (four CDP values), and a last group of 0 stands for the last.
  StoreConformanceTexts const& t = GetParam().texts;
  Attribute cdp = m_store->getAttribute("CDP");
  Attribute a = m_store->getAttribute(GetParam().attributes.back().c_str());
  expectFailure([&] { m_store->read(a, cdp, 0, 2); }, text(t.firstIsZero.c_str(), 0LL));
  std::string const& groupLastPastEnd = t.groupLastPastEnd.empty() ? t.lastPastEnd : t.groupLastPastEnd;
  expectFailure([&] { m_store->read(a, cdp, 2, 5); }, text(groupLastPastEnd.c_str(), 5LL, 4LL));
  expectFailure([&] { m_store->read(a, cdp, 3, 2); }, text(t.firstAfterLast.c_str(), 3LL, 2LL));
  expectFailure([&] { m_store->read(a, cdp, 5, 0); }, text(t.firstAfterLast.c_str(), 5LL, 4LL));
  expectSuccess([&] { m_store->read(a, cdp, 4, 0); });
}

TEST_P(StoreConformance, RefusesBadListsAndNamesWithTheirTexts) {
  StoreConformanceTexts const& t = GetParam().texts;
  long long const n = kNInstances;
  Attribute a = m_store->getAttribute("CDP");
  expectFailure([&] { m_store->read(a, std::vector<unsigned int>{3, 0, 4}); }, text(t.listHasZero.c_str(), "CDP"));
  expectFailure([&] { m_store->read(a, std::vector<unsigned int>{3, 15, 4}); },
                text(t.listPastEnd.c_str(), n + 1, "CDP", 15LL));
  Attribute unknown("NO_SUCH_ATTRIBUTE", "", vINT32);
  std::string setName = m_store->getName().c_str();
  expectFailure([&] { m_store->read(unknown, 1, 2); },
                text(t.unknownAttribute.c_str(), "NO_SUCH_ATTRIBUTE", setName.c_str()));
  std::string const& unknownDefinition = t.unknownDefinition.empty() ? t.unknownAttribute : t.unknownDefinition;
  expectFailure([&] { m_store->getAttribute("NO_SUCH_ATTRIBUTE"); },
                text(unknownDefinition.c_str(), "NO_SUCH_ATTRIBUTE", setName.c_str()));
  if (holds("OFFSET")) {
    KeyList keys = referenceKeys();
    int const cdps[] = {2, 9};
    int const offsets[] = {200, 100};
    keys.begin()->copyData(2, cdps);
    (keys.begin() + 1)->copyData(2, offsets);
    expectFailure([&] { m_store->read(a, keys); }, text(t.keysMissing.c_str(), setName.c_str(), 2LL, 1LL));
  }
}

TEST_P(StoreConformance, RefusesWritesWhenOpenForReading) {
  StoreConformanceTexts const& t = GetParam().texts;
  std::string refused = text(t.notWritable.c_str(), m_store->getName().c_str());
  Attribute cdp = referenceAttribute("CDP");
  expectFailure([&] { m_store->write(cdp, 1, kNInstances); }, refused);
  expectFailure([&] { m_store->write(cdp, range(1, kNInstances)); }, refused);
  Attribute group = referenceDefinition("CDP");
  int const three[] = {5, 5, 5};
  group.copyData(3, three);
  Attribute cdpKey = m_store->getAttribute("CDP");
  expectFailure([&] { m_store->write(group, cdpKey, 1, 1); }, refused);
  if (holds("OFFSET")) {
    KeyList keys = referenceKeys();
    int const cdps[] = {1};
    int const offsets[] = {100};
    keys.begin()->copyData(1, cdps);
    (keys.begin() + 1)->copyData(1, offsets);
    Attribute one = referenceDefinition("CDP");
    one.copyData(1, three);
    expectFailure([&] { m_store->write(one, keys); }, refused);
  }
  expectFailure([&] { m_store->addInstances(1); }, refused);
  expectFailure([&] { m_store->addAttribute(Attribute("NEW", "", vINT32)); }, refused);
  // Nothing changed.
  EXPECT_EQ(kNInstances, m_store->getNInstances());
  EXPECT_FALSE(m_store->hasAttribute("NEW"));
  Attribute back = m_store->getAttribute("CDP");
  m_store->read(back, 1, kNInstances);
  EXPECT_INSTANCES(back, std::string("CDP"), range(1, kNInstances));
}

TEST_P(StoreConformance, RefusesReadsBeforeOpening) {
  if (!GetParam().makeUnopened) GTEST_SKIP() << "the case makes no unopened store";
  vHandle<AttributeSet> store = GetParam().makeUnopened();
  ASSERT_FALSE(store.isEmpty());
  EXPECT_FALSE(store->isOpen());
  std::string const refused = text(GetParam().texts.notOpen.c_str(), "CDP");
  Attribute a = referenceDefinition("CDP");
  Attribute key = referenceDefinition("CDP");
  KeyList keys;
  keys.addKey(referenceDefinition("CDP"));
  int const one = 1;
  keys.begin()->copyData(1, &one);
  expectFailure([&] { store->read(a, 1, 1); }, refused);
  expectFailure([&] { store->read(a, std::vector<unsigned int>{1}); }, refused);
  expectFailure([&] { store->read(a, key, 1, 1); }, refused);
  expectFailure([&] { store->read(a, keys); }, refused);
}

// --- writes --------------------------------------------------------------------------

namespace {

void fill(Attribute& a, std::vector<double> const& values) {
  a.resize(static_cast<unsigned int>(values.size()));
  for (unsigned int i = 1; i <= values.size(); ++i) a.setValue(i, values[i - 1]);
}

// The store's numeric content as rows (an attribute's positions side by
// side, attributes by name), sorted, and the names: what a close must keep,
// whatever order the rows come back in.
struct Content {
  std::vector<std::string> names;
  std::vector<std::vector<double>> rows;
};

Content contentOf(AttributeSet const& store) {
  Content c;
  std::map<std::string, Attribute> byName;
  for (Attribute const& a : store.getAttributeList()) byName.emplace(a.getName().c_str(), a);
  c.rows.resize(store.getNInstances());
  for (auto& entry : byName) {
    c.names.push_back(entry.first);
    Attribute& a = entry.second;
    if (a.getDataType() == vSTRING || c.rows.empty()) continue;
    store.read(a, 1, store.getNInstances());
    for (unsigned int i = 1; i <= c.rows.size(); ++i)
      for (int k = 1; k <= a.getLength(); ++k) {
        double const v = a.getValue(i, k);
        // Unset values sort and compare as one value.
        c.rows[i - 1].push_back(std::isnan(v) ? std::numeric_limits<double>::lowest() : v);
      }
  }
  std::sort(c.rows.begin(), c.rows.end());
  return c;
}

}  // namespace

std::string StoreConformance::own(std::string const& reference) const {
  auto const& names = GetParam().ownNames;
  auto const it = names.find(reference);
  return it == names.end() ? reference : it->second;
}

void StoreConformance::expectSameAfterReopen(vHandle<AttributeSet>& store) {
  if (!GetParam().reopen) return;
  Content const before = contentOf(*store);
  store = GetParam().reopen(store);
  ASSERT_FALSE(store.isEmpty());
  ASSERT_TRUE(store->isOpen());
  Content const after = contentOf(*store);
  EXPECT_EQ(before.names, after.names);
  ASSERT_EQ(before.rows.size(), after.rows.size());
  for (std::size_t i = 0; i < before.rows.size(); ++i) EXPECT_EQ(before.rows[i], after.rows[i]) << "row " << i;
}

TEST_P(StoreConformance, WritesRangesListsAndNewInstances) {
  if (!GetParam().openForUpdate) GTEST_SKIP() << "the case opens no store for update";
  vHandle<AttributeSet> store = GetParam().openForUpdate();
  ASSERT_FALSE(store.isEmpty());
  ASSERT_TRUE(store->isOpen());

  std::string const cdpName = own("CDP");
  Attribute cdp = store->getAttribute(cdpName.c_str());
  fill(cdp, {70, 80});
  store->write(cdp, 2, 3);
  store->write(cdp, std::vector<unsigned int>{12, 1});
  Attribute back = store->getAttribute(cdpName.c_str());
  store->read(back, 1, kNInstances);
  for (unsigned int i = 1; i <= kNInstances; ++i) {
    double expected = referenceValue("CDP", i);
    if (i == 2 || i == 12) expected = 70;
    if (i == 3 || i == 1) expected = 80;
    EXPECT_EQ(expected, back.getValue(i)) << "instance " << i;
  }

  StoreConformanceTexts const& t = GetParam().texts;
  long long const n = kNInstances;
  expectFailure([&] { store->write(cdp, 1, 3); }, text(t.writeCount.c_str(), cdpName.c_str(), 2LL, 3LL));
  expectFailure([&] { store->write(cdp, 0, 1); }, text(t.firstIsZero.c_str(), 0LL));
  expectFailure([&] { store->write(cdp, n, n + 1); }, text(t.lastPastEnd.c_str(), n + 1, n));
  expectFailure([&] { store->write(cdp, std::vector<unsigned int>{1, n + 2}); },
                text(t.listPastEnd.c_str(), n + 1, cdpName.c_str(), n + 2));

  // New instances get their keys too: a back end may refuse rows without.
  store->addInstances(3);
  EXPECT_EQ(kNInstances + 3, store->getNInstances());
  fill(cdp, {5, 5, 5});
  store->write(cdp, kNInstances + 1, kNInstances + 3);
  if (holds("OFFSET")) {
    Attribute offset = store->getAttribute(own("OFFSET").c_str());
    fill(offset, {100, 200, 300});
    store->write(offset, kNInstances + 1, kNInstances + 3);
  }
  store->read(back, kNInstances + 1, kNInstances + 3);
  ASSERT_EQ(3u, back.getNInstances());
  for (unsigned int i = 1; i <= 3; ++i) EXPECT_EQ(5.0, back.getValue(i));
  // The old instances are untouched.
  store->read(back, 4, 9);
  for (unsigned int i = 4; i <= 9; ++i) EXPECT_EQ(referenceValue("CDP", i), back.getValue(i - 3));
  expectSameAfterReopen(store);
}

TEST_P(StoreConformance, AddsAttributesAndClasses) {
  if (!GetParam().openForUpdate) GTEST_SKIP() << "the case opens no store for update";
  vHandle<AttributeSet> store = GetParam().openForUpdate();
  ASSERT_FALSE(store.isEmpty());
  char const* const name = GetParam().newAttribute.c_str();
  Attribute added(name, "", vINT32);
  store->addAttribute(added);
  EXPECT_TRUE(store->hasAttribute(name));
  std::vector<double> values;
  for (unsigned int i = 1; i <= kNInstances; ++i) values.push_back(3.0 * i);
  fill(added, values);
  store->write(added, 1, kNInstances);
  Attribute read = store->getAttribute(name);
  store->read(read, 3, 5);
  ASSERT_EQ(3u, read.getNInstances());
  for (unsigned int i = 1; i <= 3; ++i) EXPECT_EQ(3.0 * (i + 2), read.getValue(i));

  if (GetParam().hasClasses && holds("ELEV")) {
    store->setAttributeClass("ELEV", "HEIGHT");
    EXPECT_EQ("HEIGHT", std::string(store->getAttribute("ELEV").getClass().c_str()));
    std::list<Attribute> heights = store->getAttributeList("HEIGHT", AttributeMatch::MATCH_CLASS);
    ASSERT_EQ(1u, heights.size());
    EXPECT_EQ("ELEV", std::string(heights.front().getName().c_str()));
  }
  expectSameAfterReopen(store);
}

TEST_P(StoreConformance, WritesByGroupsAndByKeys) {
  if (!GetParam().openForUpdate) GTEST_SKIP() << "the case opens no store for update";
  if (!holds("OFFSET")) GTEST_SKIP() << "key writes need CDP and OFFSET";
  StoreConformanceTexts const& t = GetParam().texts;
  vHandle<AttributeSet> store = GetParam().openForUpdate();
  ASSERT_FALSE(store.isEmpty());
  std::string const cdpName = own("CDP"), offsetName = own("OFFSET");
  Attribute offset = store->getAttribute(offsetName.c_str());
  Attribute cdp = store->getAttribute(cdpName.c_str());

  // Group 2 of CDP is instances 4 to 6.
  fill(offset, {-4, -5, -6});
  store->write(offset, cdp, 2, 2);
  // The group count must match the attribute's.
  expectFailure([&] { store->write(offset, cdp, 2, 3); },
                text(t.groupWriteCount.c_str(), 6, cdpName.c_str(), 3LL, offsetName.c_str()));

  // (CDP, OFFSET) = (3, 100) and (1, 300) are instances 7 and 3.
  KeyList keys;
  keys.addKey(store->getAttribute(cdpName.c_str()));
  keys.addKey(store->getAttribute(offsetName.c_str()));
  fill(*keys.begin(), {3, 1});
  fill(*(keys.begin() + 1), {100, 300});
  Attribute byKeys = store->getAttribute(cdpName.c_str());
  fill(byKeys, {70, 30});
  store->write(byKeys, keys);
  Attribute three = store->getAttribute(cdpName.c_str());
  fill(three, {1, 2, 3});
  expectFailure([&] { store->write(three, keys); }, text(t.keyWriteCount.c_str(), 2LL, 3LL, cdpName.c_str()));

  Attribute back = store->getAttribute(offsetName.c_str());
  store->read(back, 1, kNInstances);
  for (unsigned int i = 1; i <= kNInstances; ++i) {
    double expected = referenceValue("OFFSET", i);
    if (i >= 4 && i <= 6) expected = -static_cast<double>(i);
    EXPECT_EQ(expected, back.getValue(i)) << "OFFSET instance " << i;
  }
  Attribute cdpBack = store->getAttribute(cdpName.c_str());
  store->read(cdpBack, 1, kNInstances);
  for (unsigned int i = 1; i <= kNInstances; ++i) {
    double expected = referenceValue("CDP", i);
    if (i == 7) expected = 70;
    if (i == 3) expected = 30;
    EXPECT_EQ(expected, cdpBack.getValue(i)) << "CDP instance " << i;
  }
  expectSameAfterReopen(store);
}
