#ifndef REMOTE_CLIENTCODES_H
#define REMOTE_CLIENTCODES_H

// The message codes of the client proxies and their twins in the data
// server: the first vINT32 of every request and of every reply. A reply
// repeats its request's code, except the acknowledgement of a project's
// open and close (ProjectAck).

namespace ClientCode {

// ClientProjectCatalog
enum CatalogCode { GetProjectList = 1, SessionStart = 2 };

// ClientProject
enum ProjectCode {
  ProjectOpen = 98,
  ProjectClose = 99,
  ProjectAck = 101,
  GetStoreList = 103,
  GetStoreDetailsList = 104,
  DeleteStore = 105,
  PurgeStore = 106,
  HasStore = 107,
  GetStoreDetails = 108,
  GetAttributeSetDetails = 109
};

// ClientAttributeSet
enum SetCode {
  GetNInstances = 201,
  Create = 202,
  GetName = 204,
  GetVersion = 205,
  GetClass = 206,
  GetSubClass = 207,
  GetKeyList = 208,
  Close = 209,
  GetAttributeList = 210,
  AddAttribute = 211,
  Open = 212,
  Update = 213,
  AddInstances = 214,
  WriteRange = 215,
  WriteList = 216,
  WriteGroups = 217,
  WriteKeys = 218,
  GetUnique = 219,
  GetAttributeListMatching = 220,
  GetAttribute = 221,
  HasAttribute = 222,
  SetAttributeClass = 223,
  ReadRange = 224,
  ReadList = 225,
  ReadGroups = 226,
  ReadKeys = 227,
  GetProperties = 228,
  SendProperties = 229,
  GetGroupsAndSizes = 230
};

}  // namespace ClientCode

#endif
