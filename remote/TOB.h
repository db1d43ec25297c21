#ifndef REMOTE_TOB_H
#define REMOTE_TOB_H

// TOB: a node of a tree of objects with a type name. A node knows its
// parent and its children but owns neither: a child that outlives its
// parent is told (parentDied) and forgets it.

#include <vector>

#include "foundation/vString.h"

class TOB {
 public:
  typedef std::vector<TOB*> Children;
  typedef Children::iterator iterator;
  typedef Children::const_iterator const_iterator;
  typedef Children::reverse_iterator reverse_iterator;
  typedef Children::const_reverse_iterator const_reverse_iterator;

  // Joins the parent's children when a parent is given.
  explicit TOB(vString const& type, TOB* parent = nullptr);
  virtual ~TOB();

  virtual void parentDied();
  // Appends the child and becomes its parent.
  virtual void addChild(TOB* child);
  // Takes the child out if it is there; its parent is cleared either way.
  virtual void removeChild(TOB* child);
  // Inserts before the n-th child (from 0), or appends when there is none.
  virtual void insertChild(TOB* child, int n);

  vString const& getTOBType() const { return m_type; }
  TOB* getTOBParent() const { return m_parent; }

  iterator begin() { return m_children.begin(); }
  iterator end() { return m_children.end(); }
  const_iterator begin() const { return m_children.begin(); }
  const_iterator end() const { return m_children.end(); }
  reverse_iterator rbegin() { return m_children.rbegin(); }
  reverse_iterator rend() { return m_children.rend(); }
  const_reverse_iterator rbegin() const { return m_children.rbegin(); }
  const_reverse_iterator rend() const { return m_children.rend(); }

 private:
  TOB(TOB const&) = delete;
  TOB& operator=(TOB const&) = delete;

  Children m_children;
  vString m_type;
  TOB* m_parent;
};

#endif
