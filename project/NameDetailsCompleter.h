#ifndef PROJECT_NAMEDETAILSCOMPLETER_H
#define PROJECT_NAMEDETAILSCOMPLETER_H

// NameDetailsCompleter: what a project of the database back end offers
// NameDetails to complete a partial store name ("line7", "line7,tab") from
// the datasets it holds. The project lives in a layer above this one, so
// NameDetails knows it only through this interface.

#include "foundation/vString.h"

class NameDetailsCompleter {
 public:
  virtual ~NameDetailsCompleter() {}

  // From a store name and the wanted version text ("0" or blank for the
  // newest) to the dataset's ident, type and version text; true when the
  // project holds it. A name it does not hold is split into its parts.
  virtual bool locateNameComponents(vString& name, vString& ident, vString& type, vString& version) = 0;
  // The ident and type of the dataset whose name ("ident,type") is this one
  // in any case.
  virtual bool findBestMatch(vString const& name, vString& ident, vString& type) = 0;
};

#endif
