#include "project/AttributeMatch.h"

#include "attribute/Attribute.h"

bool AttributeMatch::matches(Attribute const& attribute, vUCString const& text, AttributeMatchType match) {
  vUCString const& attributeClass = attribute.getClass();
  if (attributeClass == text) return true;
  return match == MATCH_OR_BLANK_CLASS && attributeClass.isBlank();
}
