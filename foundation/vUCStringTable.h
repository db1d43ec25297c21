#ifndef FOUNDATION_VUCSTRINGTABLE_H
#define FOUNDATION_VUCSTRINGTABLE_H

// vUCStringTable interns upper-case names. An entry's id is its rank in
// lexical order, so comparing two ids compares two names without touching
// text. Ids move when a name is inserted before them; entry pointers never
// move, so whoever needs a stable key keeps the pointer.
//
// The table is shared by every attribute of every thread and is therefore the
// one string class that always locks. Ids are read without the table's lock
// (they are compared in every sort), but never half way through a
// renumbering: a read that overlaps one is made again.

#include <atomic>

#include "foundation/vUCString.h"

class vUCStringTableData {
 public:
  vUCStringTableData() : m_id(-1) {}
  explicit vUCStringTableData(vUCString const& s, int id = -1) : m_string(s), m_id(id) {}
  vUCStringTableData(vUCStringTableData const&) = delete;
  vUCStringTableData& operator=(vUCStringTableData const&) = delete;

  vUCString const& getString() const { return m_string; }
  int getID() const;
  // The ids of a and b from one state of the table: two calls of getID()
  // could straddle an insertion and see one id before it and one after.
  static void getIDs(vUCStringTableData const* a, vUCStringTableData const* b, int& idA, int& idB);
  // Whether a's name comes before b's, by ids read together.
  static bool isLess(vUCStringTableData const* a, vUCStringTableData const* b);

 private:
  friend class vUCStringTable;
  vUCString m_string;
  std::atomic<int> m_id;
};

class vUCStringTable {
 public:
  static constexpr int invalidID = -1;

  vUCStringTable();
  ~vUCStringTable();
  vUCStringTable(vUCStringTable const&) = delete;
  vUCStringTable& operator=(vUCStringTable const&) = delete;

  // Interns the name and returns its entry; the pointer stays valid until
  // clear() or the table's end.
  vUCStringTableData const* add(vUCString const& s);
  vUCStringTableData const* add(char const* s);
  // True when the name is interned; its entry goes to *entry when given.
  bool exists(vUCString const& s, vUCStringTableData const** entry = nullptr) const;
  // The lexical rank of an interned name; fatal for an unknown one.
  int getID(vUCString const& s) const;
  // The entry of rank id, or null when id is out of range.
  vUCStringTableData const* at(int id) const;
  int size() const;
  void clear();
  // One line per entry on standard output: id and name.
  void dumpTable() const;

 private:
  struct Record;
  Record* m_record;
};

#endif
