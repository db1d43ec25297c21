#ifndef TOOLS_TOOLVIEWS_H
#define TOOLS_TOOLVIEWS_H

// ToolViews: the views a user stacks over a store with "--view",
// each through the decorator factory, in the order given (the first is
// next to the store). Each --view argument is a view name, then ':' and
// its arguments separated by commas:
//   map:FILE.cstf                 the store under a mapping file's schema
//   select:ATTR,MIN,MAX           instances with ATTR in MIN..MAX
//   sort:KEY[,-KEY...]            sorted by keys ('-': descending)
//   bin:ATTR,MIN,MAX,INC,WIDTH    ATTR snapped to bins of that width
//   infill[:PAD]                  the two-key grid completed, padded as PAD says
//   restore-mute                  vector attributes from time zero
//   bind:STORE                    STORE bound after the store (whole rest)
// An argument the tool cannot follow, or a view that refuses its
// arguments, is a usage error in one line.

#include <string>
#include <vector>

#include "foundation/vHandle.h"
#include "project/Store.h"

// The --view paragraph of each command's help (a literal, so that it joins
// the help texts where they are written).
#define TOOL_VIEW_HELP                                                      \
  "  --view SPEC   stack a view over the store; repeat to stack more, the\n" \
  "                first next to the store. SPEC is one of:\n"              \
  "                  map:FILE.cstf               the schema of a mapping file\n" \
  "                  select:ATTR,MIN,MAX         instances with ATTR in MIN..MAX\n" \
  "                  sort:KEY[,-KEY...]          sorted ('-': descending)\n" \
  "                  bin:ATTR,MIN,MAX,INC,WIDTH  ATTR snapped to bins\n"     \
  "                  infill[:PAD]                the two-key grid completed; PAD is\n" \
  "                                              common (default), group, none,\n" \
  "                                              common-start, common-end or group-step\n" \
  "                  restore-mute                traces shown from time zero\n" \
  "                  bind:STORE                  STORE bound after the store\n"

class ToolViews {
 public:
  static vHandle<Store> apply(vHandle<Store> store, std::string const& spec);
  static vHandle<Store> apply(vHandle<Store> store, std::vector<std::string> const& specs);
};

#endif
