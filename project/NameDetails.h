#ifndef PROJECT_NAMEDETAILS_H
#define PROJECT_NAMEDETAILS_H

// NameDetails: the parts of a store name on the database back end,
//
//     type,version,ident,domain        e.g. "SGY,1,LINE12,NORTH"
//
// each held in upper case. Every type but "SGD" needs all four parts; an SGD
// name may end after its ident. The project is the one whose datasets can
// complete a partial name; it is not owned.

#include "foundation/vString.h"

class ZonProject;

class NameDetails {
 public:
  static char const kSeparator = ',';

  NameDetails();
  // load(name), for the given project.
  explicit NameDetails(vString const& name, ZonProject* project = nullptr);

  // Splits the name into its parts; an empty name erases them. A name
  // without a domain is fatal unless its type is SGD, and then the parts are
  // left as they were. Anything behind a fourth ',' stays in the domain, so
  // that the name reads back as it was given.
  void load(vString const& name);

  vString const& getType() const { return m_type; }
  vString const& getVersion() const { return m_version; }
  vString const& getIdent() const { return m_ident; }
  vString const& getDomain() const { return m_domain; }
  ZonProject* getProject() const { return m_project; }
  void setProject(ZonProject* project) { m_project = project; }

  // The parts joined by ',': three of them when the domain is blank.
  void getName(vString& text) const;
  vString getName() const;
  static void buildName(vString const& type, vString const& version, vString const& ident, vString const& domain,
                        vString& text);

  bool operator==(NameDetails const& other) const;
  bool operator!=(NameDetails const& other) const { return !(*this == other); }

 private:
  vString m_type;
  vString m_version;
  vString m_ident;
  vString m_domain;
  ZonProject* m_project;
};

#endif
