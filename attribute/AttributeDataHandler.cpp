#include "attribute/AttributeDataHandler.h"

AttributeDataHandler::~AttributeDataHandler() {}
