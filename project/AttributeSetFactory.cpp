#include "project/AttributeSetFactory.h"

#include <map>

#include "foundation/Message.h"
#include "foundation/SystemProperty.h"
#include "foundation/SystemPropertyManager.h"
#include "foundation/vUtl.h"
#include "project/CapiAttributeSetW.h"
#include "project/CapiMaker.h"
#include "project/CapiProject.h"
#include "project/JITProjectDecorator.h"

namespace {

struct FactoryState {
  std::list<vHandle<AttributeSet> > pushed;
  std::map<vString, AttributeSetFactory::SetMaker> sets;
  std::map<vString, AttributeSetFactory::DecoratorMaker> decorators;
};

FactoryState& state() {
  static FactoryState s;
  return s;
}

template <class Maker>
Maker replace(std::map<vString, Maker>& table, vString const& className, Maker maker) {
  auto it = table.find(className);
  Maker previous = it == table.end() ? nullptr : it->second;
  if (maker)
    table[className] = maker;
  else if (it != table.end())
    table.erase(it);
  return previous;
}

template <class Maker>
Maker find(std::map<vString, Maker> const& table, vString const& className) {
  auto it = table.find(className);
  return it == table.end() ? nullptr : it->second;
}

[[noreturn]] void notAvailable(char const* label, char const* className) {
  Message::fatal(label, 0, "Class %s is not available: no maker is registered for it (see registerRondoClasses).",
                 className);
}

char const* const kProfiling = "ProfilingAttributeSetDecorator";
char const* const kTranslating = "TranslatingAttributeSetDecorator";

}  // namespace

// --- registration -------------------------------------------------------------

AttributeSetFactory::SetMaker AttributeSetFactory::registerSetMaker(vString const& className, SetMaker maker) {
  return replace(state().sets, className, maker);
}

AttributeSetFactory::SetMaker AttributeSetFactory::getSetMaker(vString const& className) {
  return find(state().sets, className);
}

AttributeSetFactory::DecoratorMaker AttributeSetFactory::registerDecoratorMaker(vString const& className,
                                                                                DecoratorMaker maker) {
  return replace(state().decorators, className, maker);
}

AttributeSetFactory::DecoratorMaker AttributeSetFactory::getDecoratorMaker(vString const& className) {
  return find(state().decorators, className);
}

vHandle<AttributeSet> AttributeSetFactory::myMake(char const* label, char const* className,
                                                  vHandle<Project> const& project) {
  SetMaker maker = getSetMaker(className);
  if (maker == nullptr) notAvailable(label, className);
  return maker(project);
}

vHandle<AttributeSet> AttributeSetFactory::myDecorate(char const* label, char const* className,
                                                      vHandle<AttributeSet> const& set) {
  DecoratorMaker maker = getDecoratorMaker(className);
  if (maker == nullptr) notAvailable(label, className);
  return maker(set);
}

// --- the queue ------------------------------------------------------------------

std::list<vHandle<AttributeSet> >& AttributeSetFactory::myPushedSets() { return state().pushed; }

void AttributeSetFactory::pushAttributeSet(vHandle<AttributeSet> set) { myPushedSets().push_back(set); }

void AttributeSetFactory::clearAttributeSets() { myPushedSets().clear(); }

unsigned int AttributeSetFactory::getNPushedAttributeSets() { return static_cast<unsigned int>(myPushedSets().size()); }

// --- making sets -------------------------------------------------------------------

vHandle<AttributeSet> AttributeSetFactory::myMakeSet(vHandle<Project> const& project) {
  char const* const label = "AttributeSetFactory::create";
  ProjectType::PROJECT_TYPE type = project->getProjectType();
  if (type == ProjectType::UNITTEST) return myMake(label, "InMemoryAttributeSet", project);
  if (type == ProjectType::KELP) return myMake(label, "ClientAttributeSet", project);
  if (type == CapiMaker::getProjectType() &&
      (Capi::disableRondoDataServer() || project->getProjectHost() == vUtl::gethostname()))
    return vHandle<AttributeSet>(new CapiAttributeSetW(project));
  // Dorn projects, like every other type, are served by a data server.
  return myMake(label, "ClientAttributeSet", project);
}

vHandle<AttributeSet> AttributeSetFactory::create(vHandle<Project> project) {
  if (JITProjectDecorator* deferred = dynamic_cast<JITProjectDecorator*>(project.pointer())) {
    deferred->makeSureIsOpen();
    project = deferred->getDecoratedProject();
  }
  std::list<vHandle<AttributeSet> >& pushed = myPushedSets();
  if (!pushed.empty()) {
    vHandle<AttributeSet> set = pushed.front();
    pushed.pop_front();
    return set;
  }
  vHandle<AttributeSet> set = mySetWrapper("AttributeSetDecorators", myMakeSet(project));
  if (myWantsTranslation(project->getProjectType()))
    set = myDecorate("AttributeSetFactory::create", kTranslating, set);
  return set;
}

// Translation is switched on by the site ("TRANSLATIONS" of "CAPI" there,
// its first value not "no"), and applies to the project types whose
// vocabulary has a translation table: Rondo and Kelp.
bool AttributeSetFactory::myWantsTranslation(ProjectType::PROJECT_TYPE type) {
  if (type != ProjectType::RONDO && type != ProjectType::KELP) return false;
  if (!SystemPropertyManager::hasSystemProperty("CAPI", "TRANSLATIONS")) return false;
  SystemProperty property = SystemPropertyManager::getSystemProperty("CAPI", "TRANSLATIONS");
  return property.getValues().empty() || property.getValues().front().stricmp("no") != 0;
}

vHandle<AttributeSet> AttributeSetFactory::mySetWrapper(vUCString const& propertyName, vHandle<AttributeSet> set) {
  char const* const label = "AttributeSetFactory::mySetWrapper";
  if (!SystemPropertyManager::hasSystemProperty("capi", propertyName)) return set;
  SystemProperty property = SystemPropertyManager::getSystemProperty("capi", propertyName);
  for (vString const& value : property.getValues()) {
    vUCString word(value);
    if (word == "PROFILING")
      set = myDecorate(label, kProfiling, set);
    else if (word == "TRANSLATING")
      continue;  // create() decides on translation by its own rule
    else
      Message::error(label, 0, "Unknown decorator request %s, ignored.", word.c_str());
  }
  return set;
}
