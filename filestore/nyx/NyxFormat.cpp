#include "filestore/nyx/NyxFormat.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "attribute/KeyList.h"
#include "foundation/MessageHandling.h"
#include "foundation/UtlExcept.h"
#include "project/StoreFactory.h"

std::vector<vString> NyxFormat::getCandidates(vString const& fileName) {
  std::string name = vFilename(fileName).getName().c_str();
  for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  bool const stack = name.find("stk") != std::string::npos;
  if (name.find("2d") != std::string::npos) {
    if (stack) return {vString("2dStack")};
    return {vString("2dCMPGathers"), vString("2dShotGathers")};
  }
  if (name.find("3d") != std::string::npos) {
    if (stack) return {vString("3dInlineStacks"), vString("3dCrosslineStacks")};
    return {vString("3dCMPGathers"), vString("3dShotGathers")};
  }
  return {};
}

bool NyxFormat::mySpecProducesGroups(StoreDescription& description, vString const& spec) {
  vString const saved = description.getFormatSpec();
  description.setFormatSpec(spec);
  bool groups = false;
  try {
    MessageHandling quiet;
    vHandle<Store> store = StoreFactory::openStore(description, "", nullptr);
    // A true stack has one trace per CMP, so its first key never groups;
    // its traces group by line, which word 19 of the plain file holds.
    bool const stack = std::string(spec.c_str()).find("Stack") != std::string::npos;
    if (stack || store->getKeyList().getNKeys() == 0) {
      store->close();
      description.setFormatSpec(vString());
      store = StoreFactory::openStore(description, "", nullptr);
    }
    KeyList const keys = store->getKeyList();
    Attribute key = keys.getNKeys() > 0 ? *keys.begin() : store->getAttribute("WORD19");
    std::vector<unsigned int> sizes;
    store->getGroupsAndSizes(key, sizes, vUtlSort::SortOrder::ASCENDING);
    groups = std::any_of(sizes.begin(), sizes.end(), [](unsigned int n) { return n > 1; });
    store->close();
  } catch (UtlExcept const&) {
    groups = false;
  }
  description.setFormatSpec(saved);
  return groups;
}

vString NyxFormat::getSpecification(StoreDescription const& description) {
  StoreDescription copy(description);
  for (vString const& spec : getCandidates(description.getFlatFileName().getFilename()))
    if (mySpecProducesGroups(copy, spec)) return spec;
  return vString();
}
