#ifndef PROJECT_PROJECTTYPE_H
#define PROJECT_PROJECTTYPE_H

// ProjectType: the kinds of project, their names and the texts accepted for
// them. Spellings compare without regard to case.

#include <iosfwd>

#include "foundation/vString.h"

class ProjectType {
 public:
  enum PROJECT_TYPE {
    NOTYPE = 0,
    RONDO = 1,
    KELP = 2,
    DORN = 3,
    UNITTEST = 4,
    FLATFILE = 5,
    MEMORY = 6,
    INMEMORY = 7,
    ZONMESH = 8
  };

  // "NoType", "Rondo", ... ; a value outside the table is fatal.
  static vString getProjectTypeName(PROJECT_TYPE type);
  static vString getProjectTypeName(int type);
  // The type for one of its accepted spellings; an empty or null text is
  // NOTYPE. Anything else is fatal.
  static PROJECT_TYPE getProjectType(vString const& text);
  static PROJECT_TYPE getProjectType(char const* text);
  // As getProjectType, but answers false (and NOTYPE) for an unknown text.
  static bool isValidProjectType(vString const& text, PROJECT_TYPE& type);
  static bool isValidProjectType(int type);

  // Asks on `out` for a type, offering the current one as default, and reads
  // the answer from `in` until it names a type. The end of the input is
  // fatal rather than a question asked for ever.
  static void enter(PROJECT_TYPE& type, std::istream& in, std::ostream& out);
};

#endif
