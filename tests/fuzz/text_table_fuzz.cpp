// Fuzz target for the text table reader: an input is a format description
// and a table, split at the first NUL byte (a table alone has its format
// made from its data). Every record set must read or end in UtlExcept; the
// columns of a set all hold its records. Any other exception, a crash, or
// a mismatch is a finding.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "filestore/ascii/AsciiCollator.h"
#include "filestore/ascii/AsciiDataReader.h"
#include "filestore/ascii/AsciiFormat.h"
#include "foundation/UtlExcept.h"
#include "tests/fuzz/FuzzTesting.h"

namespace {

[[noreturn]] void finding(char const* what) {
  std::fprintf(stderr, "text_table_fuzz: %s\n", what);
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, std::size_t size) {
  // Errors are dropped with the reports.
  fuzz_testing::raiseWithoutReports();
  std::string const input(reinterpret_cast<char const*>(data), size);
  std::size_t const split = input.find('\0');
  std::string const table = split == std::string::npos ? input : input.substr(split + 1);
  try {
    AsciiFormat const format = split == std::string::npos ? AsciiFormat(table.c_str())
                                                          : AsciiFormat::fromText(input.substr(0, split).c_str());
    AsciiCollator const collator(table.data(), static_cast<long long>(table.size()), format);
    AsciiDataReader reader(collator, format);
    for (int set = 1; set <= collator.getNumberOfRecordSets(); ++set) {
      unsigned int const n = reader.getNumberOfRecords(set);
      if (n > table.size()) finding("more records than bytes");
      for (Attribute const& a : format.getAttributeList()) {
        Attribute const* column = reader.getColumn(set, a.getName());
        if (column == nullptr) finding("an attribute of the format without a column");
        if (column->getNInstances() != n) finding("a column of another length than its record set");
      }
    }
  } catch (UtlExcept const&) {
    return 0;
  }
  return 0;
}
