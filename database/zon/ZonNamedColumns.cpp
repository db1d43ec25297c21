#include "database/zon/ZonNamedColumns.h"

#include <strings.h>

vString ZonNamedColumns::columnOf(vUCString const& attribute) const {
  for (std::size_t i = 0; i < m_n; ++i)
    if (strcasecmp(m_names[i].attribute, attribute.c_str()) == 0) return vString(m_names[i].column);
  return vString(attribute.c_str());
}

vUCString ZonNamedColumns::attributeOf(vString const& column) const {
  for (std::size_t i = 0; i < m_n; ++i)
    if (strcasecmp(m_names[i].column, column.c_str()) == 0) return vUCString(m_names[i].attribute);
  return vUCString(column.c_str());
}
