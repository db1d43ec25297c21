#ifndef PROJECT_NAMEDETAILS_H
#define PROJECT_NAMEDETAILS_H

// NameDetails: the parts of a store name on the database back end,
//
//     type,version,ident,domain        e.g. "SGY,1,LINE12,NORTH"
//
// each held in upper case. Every type but "SGD" needs all four parts; an SGD
// name may end after its ident. The project is the one whose datasets can
// complete a partial name ("line7", "line7,tab", "line7,tab,2"); it is not
// owned. A completed name has the domain "*", any table of the dataset,
// except an SGD one, which has none.

#include "foundation/vString.h"

#include "project/NameDetailsCompleter.h"

class NameDetails {
 public:
  static char const kSeparator = ',';

  NameDetails();
  // load(name), for the given project; with complete, a partial name is
  // completed through the project first (see update()).
  explicit NameDetails(vString const& name, NameDetailsCompleter* project = nullptr, bool complete = false);

  // Splits the name into its parts; an empty name erases them. A name
  // without a domain is fatal unless its type is SGD, and then the parts are
  // left as they were. Anything behind a fourth ',' stays in the domain, so
  // that the name reads back as it was given.
  void load(vString const& name);
  // Completes the name as held through the project: the dataset's ident and
  // type, and its version, the newest for a blank or "0" one. True when the
  // project holds the dataset; false, and nothing changed, when it does not
  // or there is no project.
  bool update();

  vString const& getType() const { return m_type; }
  vString const& getVersion() const { return m_version; }
  vString const& getIdent() const { return m_ident; }
  vString const& getDomain() const { return m_domain; }
  NameDetailsCompleter* getProject() const { return m_project; }
  void setProject(NameDetailsCompleter* project) { m_project = project; }

  // The parts joined by ',': three of them when the domain is blank.
  void getName(vString& text) const;
  vString getName() const;
  static void buildName(vString const& type, vString const& version, vString const& ident, vString const& domain,
                        vString& text);

  bool operator==(NameDetails const& other) const;
  bool operator!=(NameDetails const& other) const { return !(*this == other); }

 private:
  // A partial name (ident, type and version, as a store is named) made
  // whole through the project; a whole one, or one without a project, is
  // loaded as it stands.
  bool myComplete(vString const& name);

  vString m_type;
  vString m_version;
  vString m_ident;
  vString m_domain;
  NameDetailsCompleter* m_project;
};

#endif
