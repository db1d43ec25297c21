#include "tools/DumpCommand.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "attribute/Attribute.h"
#include "tools/StoreArgument.h"
#include "tools/ToolArguments.h"
#include "tools/ToolMessages.h"
#include "tools/ToolOutput.h"
#include "tools/ToolProgress.h"
#include "tools/ToolViews.h"
#include "tools/ValueFormat.h"

namespace {

std::vector<std::string> splitNames(std::string const& text) {
  std::vector<std::string> names;
  std::size_t start = 0;
  while (start <= text.size()) {
    std::size_t const comma = std::min(text.find(',', start), text.size());
    if (comma > start) names.push_back(text.substr(start, comma - start));
    start = comma + 1;
  }
  return names;
}

}  // namespace

ToolCommand const& DumpCommand::command() {
  static ToolCommand const c = {
      "dump", "print the values of attributes, one line per instance",
      "usage: rondo dump STORE ATTRIBUTE[,ATTRIBUTE...] [--first N] [--last M] [--view SPEC]...\n"
      "\n"
      "Prints one line per instance: the instance number, a tab, then the\n"
      "attribute's values separated by spaces; several attributes are separated\n"
      "by tabs. Floating values print with %.9g, integers in decimal, strings as\n"
      "they are. Instances count from 1 and the range is inclusive; the default\n"
      "is every instance. A SEG-Y or SEG-D file cut short gives its whole\n"
      "instances and a warning on standard error; a file of another format\n"
      "cut short is an error where its layout shows the cut (at the open or\n"
      "at the first read of what is missing).\n"
      "\n" TOOL_VIEW_HELP
      "\n"
      "example:\n"
      "  rondo dump line1.sgy CMP,SHOT.RW.X --first 10 --last 12\n"
      "  rondo dump line1.sgy TRACE | head\n"
      "  rondo dump line1.sgy OFFSET,MIDX --view map:line1.cstf --view bin:OFFSET,0,3000,100,100\n",
      "first last view", &DumpCommand::run};
  return c;
}

int DumpCommand::run(ToolArguments& arguments) {
  unsigned int first = static_cast<unsigned int>(arguments.number("first", 1, 1));
  bool const hasLast = arguments.has("last");
  unsigned int last = static_cast<unsigned int>(arguments.number("last", 0, 1));
  std::vector<std::string> const views = arguments.values("view");
  arguments.finish(2, 2);
  arguments.setSubject(arguments.positional()[0]);
  std::vector<std::string> const names = splitNames(arguments.positional()[1]);
  if (names.empty()) throw ToolUsageError{"no attribute named"};

  unsigned int const cuts = ToolMessages::getNCutWarnings();
  vHandle<Store> store = ToolViews::apply(StoreArgument::open(arguments.subject()), views);
  std::vector<Attribute> attributes;
  long long bytesPerInstance = 0;
  for (std::string const& name : names) {
    attributes.push_back(store->getAttribute(vUCString(name.c_str())));
    int const bytes = attributes.back().getNBytes();
    // A variable length is not known before the read: a generous guess.
    bytesPerInstance += bytes > 0 ? bytes : 64 << 10;
  }
  unsigned int const n = store->getNInstances();
  if (!hasLast) last = n;
  if (!(n == 0 && !hasLast && !arguments.has("first"))) StoreArgument::checkRange(store, attributes.front(), first, last, n);
  if (last < first) return 0;

  unsigned int const block = StoreArgument::blockSize(bytesPerInstance);
  ToolOutput out;
  ToolProgress progress(last - first + 1ull);
  std::string number;
  for (unsigned long long from = first; from <= last; from += block) {
    unsigned int const to = static_cast<unsigned int>(std::min<unsigned long long>(last, from + block - 1));
    for (Attribute& attribute : attributes) store->read(attribute, static_cast<unsigned int>(from), to);
    for (unsigned int i = 1; i <= to - from + 1; ++i) {
      out.put(std::to_string(from + i - 1));
      for (Attribute const& attribute : attributes) {
        out.put('\t');
        number.clear();
        ValueFormat::appendInstance(number, attribute, i);
        out.put(number);
      }
      out.put('\n');
      out.maybeFlush();
    }
    progress.update(to - first + 1ull);
  }
  out.flush();
  // The store said that its file is cut; the user also wants to know what
  // of it the dump still holds. Other warnings (an index that does not fit)
  // lose no instance.
  if (ToolMessages::getNCutWarnings() != cuts)
    std::fputs(ToolMessages::line("only whole instances were read: " + std::to_string(n) +
                                  " of them; the part instance at the end of the file was left out")
                   .c_str(),
               stderr);
  return 0;
}
