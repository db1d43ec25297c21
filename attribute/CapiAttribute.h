#ifndef ATTRIBUTE_CAPIATTRIBUTE_H
#define ATTRIBUTE_CAPIATTRIBUTE_H

// Capi: small free functions of the store layer. This part holds the
// searches in attribute lists and the process-wide switches that concern
// attributes and their data; the switches that concern projects (the data
// server, the back ends of the build, the default project) are in
// project/CapiProject.h.
//
// The switches are plain process-wide values, set by the application at
// start-up; no locking.

#include <iosfwd>
#include <list>
#include <vector>

#include "attribute/Attribute.h"
#include "foundation/DataType.h"
#include "foundation/vUCString.h"

namespace Capi {

// --- Searches by name --------------------------------------------------------
bool has(std::list<Attribute> const& list, Attribute const& attribute);
bool has(std::list<Attribute> const& list, vUCString const& name);
std::list<Attribute>::iterator find(std::list<Attribute>& list, Attribute const& attribute);
std::list<Attribute>::const_iterator find(std::list<Attribute> const& list, Attribute const& attribute);
std::list<Attribute>::iterator find(std::list<Attribute>& list, vUCString const& name);
std::list<Attribute>::const_iterator find(std::list<Attribute> const& list, vUCString const& name);

bool has(std::vector<vUCString> const& list, Attribute const& attribute);
bool has(std::vector<vUCString> const& list, vUCString const& name);
std::vector<vUCString>::iterator find(std::vector<vUCString>& list, Attribute const& attribute);
std::vector<vUCString>::const_iterator find(std::vector<vUCString> const& list, Attribute const& attribute);
std::vector<vUCString>::iterator find(std::vector<vUCString>& list, vUCString const& name);
std::vector<vUCString>::const_iterator find(std::vector<vUCString> const& list, vUCString const& name);

// Each attribute of the range, as Attribute's stream inserter prints it.
void print(std::ostream& out, std::list<Attribute>::const_iterator first, std::list<Attribute>::const_iterator last);

// --- Process switches ------------------------------------------------------------

// Whether attribute names are translated between the vocabularies of a
// back end and of the application.
enum eAttributeConversion { eNoAttributeConversion = 0, eAttributeTranslation = 1 };
// Whether attribute data are converted to the types of the application.
enum eDataConversion { eNoDataConversion = 0, eDataTypeConversion = 1 };

// Both start at 1, the translating setting.
void setAttributeConversion(eAttributeConversion conversion);
eAttributeConversion getAttributeConversion();
void setDataConversion(eDataConversion conversion);
eDataConversion getDataConversion();

// Set by a data browser while it runs; false at start.
void setDataBrowserActive(bool active);
bool isDataBrowserActive();

// True when the environment variable RELEASE names a path that exists
// (asked anew at each call).
bool haveCapiRondo();
bool haveAnyCapiRondo();
// The Dorn back end is not part of this build.
bool haveCapiDorn();

// Whether the database project 9999 is hidden from listings; false at start.
bool isCapiZon9999Hidden();
void hideCapiZon9999(bool hide);

// The type of horizon times: vINT32 (the attribute "HTIME", the start) or
// vFLOAT32 ("HORIZONFLOATVALUES"). Another type is fatal from
// "Capi:setHorizonTimesType": "Illegal type %s, must be vINT32 or
// vFLAOT32.". Returns the type set before.
DataType setHorizonTimesType(DataType type);
DataType getHorizonTimesType();
vUCString const& getHorizonTimeName();

}  // namespace Capi

#endif
