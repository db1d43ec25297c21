#include "foundation/Packable.h"

Packable::~Packable() = default;
