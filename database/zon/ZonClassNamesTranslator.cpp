#include "database/zon/ZonClassNamesTranslator.h"

#include "foundation/Message.h"

ZonClassConvertLoader::ClassMap ZonClassNamesTranslator::myToZon;
ZonClassConvertLoader::ClassMap ZonClassNamesTranslator::myFromZon;
bool ZonClassNamesTranslator::myInitialised = false;

vString ZonClassNamesTranslator::getFileName() { return vString("ZonClassTranslations.txt"); }

void ZonClassNamesTranslator::myInit() {
  if (myInitialised) return;
  ZonClassConvertLoader::ClassMap toZon, fromZon;
  ZonClassConvertLoader loader;
  loader.setMaps(&toZon, &fromZon);
  loader.load(getFileName(), vString("Check Name"));
  myToZon.swap(toZon);
  myFromZon.swap(fromZon);
  myInitialised = true;
}

void ZonClassNamesTranslator::myConvert(char const* label, ZonClassConvertLoader::ClassMap const& map,
                                        vString const& className, vString const& subClass, vString& outClass,
                                        vString& outSubClass) {
  myInit();
  ZonClassConvertLoader::ClassMap::const_iterator const found =
      map.find(ZonClassConvertLoader::ClassPair(className, subClass));
  if (found == map.end())
    Message::fatal(label, 0, "Class <%s> and/or Sub Class <%s> not located", className.c_str(), subClass.c_str());
  outClass = found->second.first;
  outSubClass = found->second.second;
}

void ZonClassNamesTranslator::convertRondoVToZon(vString const& className, vString const& subClass,
                                                 vString& zonClass, vString& zonSubClass) {
  myConvert("ZonClassNamesTranslator::convertRondoVToZon", myToZon, className, subClass, zonClass, zonSubClass);
}

void ZonClassNamesTranslator::convertZonToRondoV(vString const& zonClass, vString const& zonSubClass,
                                                 vString& className, vString& subClass) {
  myConvert("ZonClassNamesTranslator::convertZonToRondoV", myFromZon, zonClass, zonSubClass, className, subClass);
}

void ZonClassNamesTranslator::dropTable() {
  myToZon.clear();
  myFromZon.clear();
  myInitialised = false;
}
