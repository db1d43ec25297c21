#ifndef FOUNDATION_SYSTEMPROPERTYLOADER_H
#define FOUNDATION_SYSTEMPROPERTYLOADER_H

// SystemPropertyLoader: reads a property table file record by record into a
// SystemPropertyTable. Messages are kept quiet while it reads: a bad record
// still raises its UtlExcept, carrying the file's path, but prints no report.

#include "foundation/SystemFileLoader.h"

class SystemPropertyTable;

class SystemPropertyLoader : public SystemFileLoader {
 public:
  explicit SystemPropertyLoader(SystemPropertyTable& table);
  ~SystemPropertyLoader() override;

  int getNRecords() const { return m_nRecords; }

 protected:
  void doLoad(std::istream& in, vString const& text) override;

 private:
  SystemPropertyTable& m_table;
  int m_nRecords;
};

#endif
