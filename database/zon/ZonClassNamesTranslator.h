#ifndef DATABASE_ZON_ZONCLASSNAMESTRANSLATOR_H
#define DATABASE_ZON_ZONCLASSNAMESTRANSLATOR_H

// ZonClassNamesTranslator: the class and subclass of a store as this system
// names them, against the dataset type and table class of the database. The
// translations come from the system file "ZonClassTranslations.txt" (see
// ZonClassConvertLoader), read once on first use. Names compare as given;
// this system's are lower case, the database's upper case.

#include "database/zon/ZonClassConvertLoader.h"
#include "foundation/vString.h"

class ZonClassNamesTranslator {
 public:
  static vString getFileName();

  // A failed look-up is fatal: "Class <%s> and/or Sub Class <%s> not
  // located".
  static void convertRondoVToZon(vString const& className, vString const& subClass, vString& zonClass,
                                 vString& zonSubClass);
  static void convertZonToRondoV(vString const& zonClass, vString const& zonSubClass, vString& className,
                                 vString& subClass);
  // Forgets the translations; the next look-up reads the file again.
  static void dropTable();

 private:
  static void myInit();
  static void myConvert(char const* label, ZonClassConvertLoader::ClassMap const& map, vString const& className,
                        vString const& subClass, vString& outClass, vString& outSubClass);

  static ZonClassConvertLoader::ClassMap myToZon;
  static ZonClassConvertLoader::ClassMap myFromZon;
  static bool myInitialised;
};

#endif
