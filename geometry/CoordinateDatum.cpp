#include "geometry/CoordinateDatum.h"

#include <ogr_srs_api.h>

#include <cstdlib>
#include <cstring>

CoordinateDatum::CoordinateDatum() : m_gcsCode(0) {}

CoordinateDatum::~CoordinateDatum() = default;

void CoordinateDatum::setGeodeticDatum(vString const& name) {
  if (name == m_datum) return;
  m_datum = name;
  struct Known {
    char const* name;
    int code;
  } const known[] = {{"WGS84", 4326}, {"WGS72", 4322}, {"NAD27", 4267}, {"NAD83", 4269}};
  m_gcsCode = 0;
  bool found = false;
  for (Known const& k : known)
    if (name == vString(k.name)) {
      m_gcsCode = k.code;
      found = true;
    }
  char const* text = name.c_str();
  if (!found && std::strncmp(text, "EPSG:", 5) == 0) m_gcsCode = std::atoi(text + 5);
  notify();
}

void CoordinateDatum::getGeodeticDatumDescriptions(std::vector<vString>& descriptions) {
  int count = 0;
  OSRCRSInfo** list = OSRGetCRSInfoListFromDatabase("EPSG", nullptr, &count);
  for (int i = 0; i < count; ++i) {
    OSRCRSInfo const* info = list[i];
    if (info->eType != OSR_CRS_TYPE_GEOGRAPHIC_2D || info->bDeprecated) continue;
    vString description("EPSG:");
    description += info->pszCode;
    description += " ";
    description += info->pszName;
    descriptions.push_back(description);
  }
  OSRDestroyCRSInfoList(list);
}
