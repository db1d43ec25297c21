#ifndef DATABASE_ZON_ZONNAMEDCOLUMNS_H
#define DATABASE_ZON_ZONNAMEDCOLUMNS_H

// ZonNamedColumns: the attribute names of a typed dataset against the
// dictionary names of the columns that hold them (a dictionary name has at
// most sixteen characters). Names that are not listed are the same on both
// sides.

#include <cstddef>

#include "foundation/vString.h"
#include "foundation/vUCString.h"

struct ZonNamedColumn {
  char const* attribute;
  char const* column;
};

class ZonNamedColumns {
 public:
  template <std::size_t N>
  explicit ZonNamedColumns(ZonNamedColumn const (&names)[N]) : m_names(names), m_n(N) {}

  vString columnOf(vUCString const& attribute) const;
  vUCString attributeOf(vString const& column) const;

 private:
  ZonNamedColumn const* m_names;
  std::size_t m_n;
};

#endif
