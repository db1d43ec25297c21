#ifndef DATABASE_ZON_ZONCLASSCONVERTLOADER_H
#define DATABASE_ZON_ZONCLASSCONVERTLOADER_H

// ZonClassConvertLoader reads the class translation file of the database
// stores. Each line holds four words:
//
//   class  subclass  dataset-type  table
//
// the class and subclass of a store as this system names them ("-" for a
// blank subclass), and the dataset type and table class of the database. A line with another count of
// words is reported and left out; blank lines and lines that start with '#'
// are not translations.

#include <iosfwd>
#include <map>
#include <utility>
#include <vector>

#include "foundation/SystemFileLoader.h"
#include "foundation/vString.h"

class ZonClassConvertLoader : public SystemFileLoader {
 public:
  typedef std::pair<vString, vString> ClassPair;
  typedef std::map<ClassPair, ClassPair> ClassMap;

  static int const kTokens = 4;

  ZonClassConvertLoader();
  ~ZonClassConvertLoader() override;

  // Where the translations go: this system's names to the database's, and
  // back. Both must outlive the load.
  void setMaps(ClassMap* toZon, ClassMap* fromZon);
  // Both maps, one translation a line, words tab separated.
  void dumpMaps(std::ostream& out) const;

  // The words of a line.
  static std::vector<vString> parseString(vString& line);
  // Whether the line has the words a translation needs; logs the line when
  // it has not.
  static bool checkForTokens(std::vector<vString> const& tokens, vString const& line);

 protected:
  void doLoad(std::istream& in, vString const& text) override;

 private:
  ClassMap* m_toZon;
  ClassMap* m_fromZon;
};

#endif
