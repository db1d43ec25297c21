#include "filestore/disk/AttributeFile.h"

AttributeFile::~AttributeFile() {}

void AttributeFile::setRestoreMute(bool value) { restoreMute = value; }

bool AttributeFile::getRestoreMute() const { return restoreMute; }
