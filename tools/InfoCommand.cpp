#include "tools/InfoCommand.h"

#include <cmath>
#include <cstdio>
#include <list>

#include "attribute/Attribute.h"
#include "attribute/KeyList.h"
#include "attribute/Property.h"
#include "foundation/vUtl.h"
#include "tools/GridInfo.h"
#include "tools/StoreArgument.h"
#include "tools/ToolViews.h"
#include "tools/ToolArguments.h"
#include "tools/ToolOutput.h"
#include "tools/ValueFormat.h"

namespace {

std::string jsonString(char const* text) { return ValueFormat::jsonString(text); }
std::string jsonNumber(double value) { return ValueFormat::jsonNumber(value); }

std::string number(double value) {
  std::string out;
  ValueFormat::appendNumber(out, value);
  return out;
}

std::string typeName(DataType type) { return vUtl::dataTypeName(type).c_str(); }

std::string lengthText(Attribute const& a) {
  return a.isVariableLength() ? std::string("variable") : std::to_string(a.getLength());
}

std::string propertyText(Property const& p, bool json) {
  bool const text = !ValueFormat::isNumeric(p.getDataType());
  std::string out = json && p.getNElements() != 1 ? "[" : "";
  for (unsigned int i = 1; i <= p.getNElements(); ++i) {
    if (i > 1) out += json ? "," : " ";
    if (text)
      out += json ? jsonString(p.getString(i).c_str()) : std::string(p.getString(i).c_str());
    else
      out += json ? jsonNumber(p.getFloat64(i)) : number(p.getFloat64(i));
  }
  return json && p.getNElements() != 1 ? out + "]" : out;
}

void writeText(ToolOutput& out, Store const& store, std::list<Attribute> const& attributes, KeyList const& keys) {
  char line[512];
  std::snprintf(line, sizeof line, "store       %s\nclass       %s\nsubclass    %s\ninstances   %u\nattributes  %u\n",
                store.getName().c_str(), store.getClass().c_str(), store.getSubClass().c_str(),
                store.getNInstances(), static_cast<unsigned int>(attributes.size()));
  out.put(line);
  std::snprintf(line, sizeof line, "  %-24s %-9s %8s %12s %12s %15s %15s\n", "NAME", "TYPE", "LENGTH", "SAMPLE RATE",
                "FIRST TIME", "MIN", "MAX");
  out.put(line);
  for (Attribute const& a : attributes) {
    double low = 0.0, high = 0.0;
    long long zeros = 0;
    a.getStatisticValues(low, high, zeros);
    std::snprintf(line, sizeof line, "  %-24s %-9s %8s %12s %12s %15s %15s\n", a.getName().c_str(),
                  typeName(a.getDataType()).c_str(), lengthText(a).c_str(), number(a.getSampleRate()).c_str(),
                  number(a.getFirstTime()).c_str(), number(low).c_str(), number(high).c_str());
    out.put(line);
  }
  out.put("keys        ");
  char const* separator = "";
  for (Attribute const& key : keys) {
    out.put(separator);
    out.put(key.getName().c_str());
    separator = " ";
  }
  out.put('\n');
  GridInfo::writeText(out, store);
  for (auto p = store.beginProperty(); p != store.endProperty(); ++p) {
    out.put("property    ");
    out.put(p->getName().c_str());
    out.put(" = ");
    out.put(propertyText(*p, false));
    out.put('\n');
  }
}

void writeJson(ToolOutput& out, Store const& store, std::list<Attribute> const& attributes, KeyList const& keys) {
  out.put("{\"store\":" + jsonString(store.getName().c_str()) + ",\"class\":" + jsonString(store.getClass().c_str()) +
          ",\"subclass\":" + jsonString(store.getSubClass().c_str()) +
          ",\"instances\":" + std::to_string(store.getNInstances()) + ",\"attributes\":[");
  char const* separator = "";
  for (Attribute const& a : attributes) {
    double low = 0.0, high = 0.0;
    long long zeros = 0;
    a.getStatisticValues(low, high, zeros);
    out.put(separator);
    out.put("{\"name\":" + jsonString(a.getName().c_str()) + ",\"type\":" + jsonString(typeName(a.getDataType()).c_str()) +
            ",\"length\":" + (a.isVariableLength() ? std::string("null") : std::to_string(a.getLength())) +
            ",\"sampleRate\":" + jsonNumber(a.getSampleRate()) + ",\"firstTime\":" + jsonNumber(a.getFirstTime()) +
            ",\"min\":" + jsonNumber(low) + ",\"max\":" + jsonNumber(high) + "}");
    separator = ",";
  }
  out.put("],\"keys\":[");
  separator = "";
  for (Attribute const& key : keys) {
    out.put(separator);
    out.put(jsonString(key.getName().c_str()));
    separator = ",";
  }
  out.put("],\"properties\":{");
  separator = "";
  for (auto p = store.beginProperty(); p != store.endProperty(); ++p) {
    out.put(separator);
    out.put(jsonString(p->getName().c_str()) + ":" + propertyText(*p, true));
    separator = ",";
  }
  out.put("},\"grid\":" + GridInfo::json(store) + "}\n");
}

}  // namespace

ToolCommand const& InfoCommand::command() {
  static ToolCommand const c = {
      "info", "what a store holds: class, instances, attributes, keys, properties",
      "usage: rondo info STORE [--json] [--view SPEC]...\n"
      "\n"
      "Prints the store's class, subclass and number of instances, then one line\n"
      "per attribute (name, data type, length, sample rate, first time and the\n"
      "two statistic values), the key list, the CMP grid when the store carries\n"
      "one (lines, intervals, origin, rotation, corners in world coordinates,\n"
      "coordinate system) and the properties. With --json the same comes as one\n"
      "JSON object.\n"
      "\n"
      "STORE is a store name (\"file:/data/line1.segy#segy#\", a project-served\n"
      "\"rondo::host:project:line1\") or a plain path, whose format is found from\n"
      "its name, or a file of a packed in-memory store, known by its first bytes.\n"
      "\n" TOOL_VIEW_HELP
      "\n"
      "example:\n"
      "  rondo info line1.sgy\n"
      "  rondo info line1.sgy --json\n"
      "  rondo info line1.sgy --view sort:CDP,-OFFSET --view map:line1.cstf\n",
      "view", &InfoCommand::run};
  return c;
}

int InfoCommand::run(ToolArguments& arguments) {
  bool const json = arguments.flag("json");
  std::vector<std::string> const views = arguments.values("view");
  arguments.finish(1, 1);
  arguments.setSubject(arguments.positional()[0]);
  vHandle<Store> store = ToolViews::apply(StoreArgument::open(arguments.subject()), views);
  std::list<Attribute> const attributes = store->getAttributeList();
  KeyList const keys = store->getKeyList();
  ToolOutput out;
  if (json)
    writeJson(out, *store, attributes, keys);
  else
    writeText(out, *store, attributes, keys);
  out.flush();
  return 0;
}
