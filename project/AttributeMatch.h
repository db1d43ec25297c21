#ifndef PROJECT_ATTRIBUTEMATCH_H
#define PROJECT_ATTRIBUTEMATCH_H

// AttributeMatch: how AttributeSet::getAttributeList(text, match) chooses
// attributes. The text is compared with each attribute's class; an
// attribute whose class is blank is known by its name alone, and
// MATCH_OR_BLANK_CLASS keeps those as well. The values travel as an int in
// the remote protocol: never renumber them.

#include "foundation/vUCString.h"

class Attribute;

class AttributeMatch {
 public:
  enum AttributeMatchType {
    // The class equals the text.
    MATCH_CLASS = 0,
    // The class equals the text, or the class is blank.
    MATCH_OR_BLANK_CLASS = 1
  };

  // Whether an attribute is chosen by the text under the match type.
  static bool matches(Attribute const& attribute, vUCString const& text, AttributeMatchType match);
};

#endif
