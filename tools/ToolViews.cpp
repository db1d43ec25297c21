#include "tools/ToolViews.h"

#include <cerrno>
#include <cstdlib>

#include "decorator/InfillStoreDecorator.h"
#include "decorator/StoreDecoratorFactory.h"
#include "foundation/UtlExcept.h"
#include "tools/StoreArgument.h"
#include "tools/ToolRangeSelect.h"
#include "tools/ToolArguments.h"  // ToolUsageError

namespace {

struct Spec {
  std::string text;
  std::string name;
  std::string rest;
  std::vector<std::string> arguments;
};

[[noreturn]] void refuse(Spec const& spec, std::string const& why) {
  throw ToolUsageError{"--view '" + spec.text + "': " + why, true};
}

Spec parse(std::string const& text) {
  Spec spec;
  spec.text = text;
  std::size_t const colon = text.find(':');
  spec.name = text.substr(0, colon);
  if (colon == std::string::npos) return spec;
  spec.rest = text.substr(colon + 1);
  std::size_t start = 0;
  for (;;) {
    std::size_t const comma = spec.rest.find(',', start);
    spec.arguments.push_back(spec.rest.substr(start, comma - start));
    if (spec.arguments.back().empty()) refuse(spec, "an empty argument");
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  return spec;
}

void expectCount(Spec const& spec, std::size_t minimum, std::size_t maximum) {
  std::size_t const n = spec.arguments.size();
  if (n >= minimum && n <= maximum) return;
  if (maximum == 0) refuse(spec, "'" + spec.name + "' takes no arguments");
  refuse(spec, "'" + spec.name + "' wants " +
                   (minimum == maximum ? std::to_string(minimum) : "at least " + std::to_string(minimum)) +
                   (minimum == 1 && maximum == 1 ? " argument" : " arguments") + ", not " + std::to_string(n));
}

double number(Spec const& spec, std::string const& text) {
  char* end = nullptr;
  errno = 0;
  double const value = std::strtod(text.c_str(), &end);
  if (*end != 0 || errno != 0) refuse(spec, "'" + text + "' is not a number");
  return value;
}

vHandle<Store> applyParsed(vHandle<Store> store, Spec const& spec) {
  if (spec.name == "map") {
    expectCount(spec, 1, 1);
    vHandle<Store> out = StoreDecoratorFactory::addAttributeMapping(store, vFilename(spec.rest.c_str()));
    // The keys a mapping file lists are found when first asked for: asked
    // here, one it cannot define is the view's refusal, before any output.
    out->getKeyList();
    return out;
  }
  if (spec.name == "sort") {
    expectCount(spec, 1, ~std::size_t(0));
    vHandle<SortStoreDecorator> sort;
    vHandle<Store> out = StoreDecoratorFactory::addSort(store, sort);
    for (std::string const& key : spec.arguments) {
      bool const down = key[0] == '-';
      if (down && key.size() == 1) refuse(spec, "a '-' without a key");
      sort->addSortKey(vUCString(key.c_str() + (down ? 1 : 0)),
                       down ? vUtlSort::SortOrder::DESCENDING : vUtlSort::SortOrder::ASCENDING);
    }
    return out;
  }
  if (spec.name == "select") {
    expectCount(spec, 3, 3);
    double const minimum = number(spec, spec.arguments[1]);
    double const maximum = number(spec, spec.arguments[2]);
    // Looked up now, so that a wrong attribute name is reported against the
    // --view argument that gave it, not against the first read.
    Attribute const attribute = store->getAttribute(vUCString(spec.arguments[0].c_str()));
    vUCString const name = attribute.getName();
    // A range holds one number an instance: a trace or a text is refused
    // here rather than at the first read.
    DataType const type = attribute.getDataType();
    if (attribute.getLength() != 1 || !(type == vINT16 || type == vINT32 || type == vINT64 || type == vFLOAT32 ||
                                        type == vFLOAT64 || type == vUINT16 || type == vUINT32 || type == vINT8 ||
                                        type == vUINT8))
      refuse(spec, "'select' wants an attribute of one number an instance, and " + std::string(name.c_str()) +
                       " is not");
    vHandle<SelectStoreDecorator> select;
    vHandle<Store> out = StoreDecoratorFactory::addSelect(store, select);
    select->addOperator(vHandle<SelectOperatorBase>(new ToolRangeSelect(name, minimum, maximum)));
    return out;
  }
  if (spec.name == "bin") {
    expectCount(spec, 5, 5);
    Binner binner;
    binner.addBins(number(spec, spec.arguments[1]), number(spec, spec.arguments[2]), number(spec, spec.arguments[3]),
                   number(spec, spec.arguments[4]));
    // Bins from MIN away from MAX leave none, and every value would become the no-value.
    if (binner.numberOfBins() == 0) refuse(spec, "no bins from " + spec.arguments[1] + " to " + spec.arguments[2] +
                                                     " by " + spec.arguments[3]);
    return StoreDecoratorFactory::addBin(store, binner, store->getAttribute(vUCString(spec.arguments[0].c_str())));
  }
  if (spec.name == "infill") {
    expectCount(spec, 0, 1);
    char const* const names[] = {"common", "group", "none", "common-start", "common-end", "group-step"};
    int type = 0;
    while (!spec.arguments.empty() && type < 6 && spec.arguments[0] != names[type]) ++type;
    if (type == 6)
      refuse(spec,
             "no pad type '" + spec.arguments[0] + "' (common, group, none, common-start, common-end, group-step)");
    // Refused here rather than at the first read, where it would not name the view.
    unsigned int const keys = store->getKeyList().getNKeys();
    if (keys < 2) refuse(spec, "the grid is that of two keys, and the store has " + std::to_string(keys));
    if (spec.arguments.empty()) return StoreDecoratorFactory::addInfill(store);
    return vHandle<Store>(
        new InfillStoreDecorator(store, static_cast<InfillAttributeSetIndexingTable::AttrPadType>(type)));
  }
  if (spec.name == "restore-mute") {
    expectCount(spec, 0, 0);
    return StoreDecoratorFactory::addRestoreMute(store);
  }
  if (spec.name == "bind") {
    // The whole rest is one store name: names of the store grammar may
    // hold commas of their own.
    if (spec.rest.empty()) refuse(spec, "'bind' wants a store");
    vHandle<BindStoreDecorator> bind;
    vHandle<Store> out = StoreDecoratorFactory::addBind(store, bind);
    bind->addStore(StoreArgument::open(spec.rest));
    return out;
  }
  refuse(spec, "no view '" + spec.name + "' (map, select, sort, bin, infill, restore-mute, bind)");
}

}  // namespace

vHandle<Store> ToolViews::apply(vHandle<Store> store, std::string const& text) {
  Spec const spec = parse(text);
  try {
    return applyParsed(store, spec);
  } catch (UtlExcept const& e) {
    refuse(spec, e.getReason().c_str());
  }
}

vHandle<Store> ToolViews::apply(vHandle<Store> store, std::vector<std::string> const& specs) {
  for (std::string const& spec : specs) store = apply(store, spec);
  return store;
}
