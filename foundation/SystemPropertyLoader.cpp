#include "foundation/SystemPropertyLoader.h"

#include <istream>

#include "foundation/MessageHandling.h"
#include "foundation/SystemProperty.h"
#include "foundation/SystemPropertyTable.h"
#include "foundation/UtlExcept.h"

SystemPropertyLoader::SystemPropertyLoader(SystemPropertyTable& table) : m_table(table), m_nRecords(0) {}

SystemPropertyLoader::~SystemPropertyLoader() {}

void SystemPropertyLoader::doLoad(std::istream& in, vString const&) {
  MessageHandling quiet;
  try {
    SystemProperty property;
    while (in >> property) {
      m_table.addSystemProperty(property);
      ++m_nRecords;
    }
  } catch (UtlExcept& e) {
    // The record's own text does not say which of the tables it came from.
    e.setFileName(getPath());
    throw;
  }
}
