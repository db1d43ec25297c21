#ifndef FILESTORE_NYX_NYXFORMAT_H
#define FILESTORE_NYX_NYXFORMAT_H

// NyxFormat: which attribute mapping specification fits a Nyx file. The
// specifications are mapping files (extension "cstf", in the system files
// directory of the release): "2dCMPGathers", "2dShotGathers", "2dStack",
// "3dCMPGathers", "3dCrosslineStacks", "3dInlineStacks", "3dShotGathers".
// The file name tells the family: "2d" or "3d", and "stk" for stacks; the
// names of the family are tried in turn and the first under which the file
// falls into groups of more than one trace wins.

#include <vector>

#include "foundation/vString.h"
#include "project/StoreDescription.h"

class NyxFormat {
 public:
  // The name of the mapping file that fits the file, blank when none does.
  static vString getSpecification(StoreDescription const& description);
  // True when the file opens through that specification and has a group of
  // more than one trace on the specification's first key; for a stack
  // specification (and one without keys) on WORD19 of the plain file, the
  // line, since a stack's CMPs are one trace each. Any failure to open it
  // so is a no.
  static bool mySpecProducesGroups(StoreDescription& description, vString const& spec);
  // The specifications tried for a file name, in order.
  static std::vector<vString> getCandidates(vString const& fileName);
};

#endif
