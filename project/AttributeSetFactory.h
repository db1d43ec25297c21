#ifndef PROJECT_ATTRIBUTESETFACTORY_H
#define PROJECT_ATTRIBUTESETFACTORY_H

// AttributeSetFactory: the attribute sets of a project, one level below
// StoreFactory. Which class a project's sets are of follows from the
// project's type and from where it is served:
//
//   UnitTest                                    InMemoryAttributeSet
//   Kelp                                        ClientAttributeSet
//   the in-process type, data server bypassed   CapiAttributeSetW
//   the in-process type, project on this host   CapiAttributeSetW
//   anything else, Dorn included                ClientAttributeSet
//
// Each set made is then wrapped as the site configures it: the system
// property "AttributeSetDecorators" of section "capi" lists decorators by
// name ("PROFILING" for ProfilingAttributeSetDecorator; "TRANSLATING" is
// accepted and left to the next rule, so that a set is never translated
// twice), and when the property "TRANSLATIONS" of section "CAPI" exists
// and its first value is not "no", the sets of Rondo and Kelp projects get
// a TranslatingAttributeSetDecorator on top.
//
// Apart from CapiAttributeSetW, which lives in this layer, the classes are
// known by name and made by the makers that registerRondoClasses() gives
// this factory; a class without one is fatal and names the class. Sets
// pushed with pushAttributeSet() are handed out first, as they are, first
// in, first out. No locks: one thread.

#include <list>

#include "foundation/vHandle.h"
#include "foundation/vString.h"
#include "foundation/vUCString.h"
#include "project/AttributeSet.h"
#include "project/Project.h"

class AttributeSetFactory {
 public:
  typedef vHandle<AttributeSet> (*SetMaker)(vHandle<Project> const& project);
  typedef vHandle<AttributeSet> (*DecoratorMaker)(vHandle<AttributeSet> const& set);

  // A new, closed attribute set for the project, or the first pushed set.
  static vHandle<AttributeSet> create(vHandle<Project> project);
  static void pushAttributeSet(vHandle<AttributeSet> set);
  static void clearAttributeSets();
  static unsigned int getNPushedAttributeSets();

  // The set wrapped in the decorators that the "capi" system property of
  // that name lists, in the order listed, so that the last listed is
  // outermost. Without the property the set comes back as it is. A word
  // that names no decorator is reported and passed over.
  static vHandle<AttributeSet> mySetWrapper(vUCString const& propertyName, vHandle<AttributeSet> set);

  // --- registration (registerRondoClasses). Each returns the maker it
  // replaces; a null maker removes the class again.
  static SetMaker registerSetMaker(vString const& className, SetMaker maker);
  static SetMaker getSetMaker(vString const& className);
  static DecoratorMaker registerDecoratorMaker(vString const& className, DecoratorMaker maker);
  static DecoratorMaker getDecoratorMaker(vString const& className);

 private:
  static std::list<vHandle<AttributeSet> >& myPushedSets();
  static vHandle<AttributeSet> myMakeSet(vHandle<Project> const& project);
  static vHandle<AttributeSet> myMake(char const* label, char const* className, vHandle<Project> const& project);
  static bool myWantsTranslation(ProjectType::PROJECT_TYPE type);
  static vHandle<AttributeSet> myDecorate(char const* label, char const* className, vHandle<AttributeSet> const& set);
};

#endif
