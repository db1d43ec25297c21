#ifndef DECORATOR_ATTRIBUTEMAPPINGPARSERINFO_H
#define DECORATOR_ATTRIBUTEMAPPINGPARSERINFO_H

// AttributeMappingDecorator::ParserInfo: one attribute of a mapped schema
// and the expression that computes it from attributes of the store below.
// The expression is compiled once; each source attribute is read over the
// instances asked for into a column of doubles that the parser is bound to,
// and the whole column is evaluated at once: an expression of values,
// variables, arithmetic and comparisons an operation at a time over the
// columns, any other in muParser's bulk mode.
//
// Beyond muParser's own operators: ">>" and "<<" (at the priority of "+"
// and "-"), "&" and "|" (at the priority of "||"), each on operands
// truncated to integers; literals "0x..." (hexadecimal) and "0b..."
// (binary). A variable written with a leading backslash names the
// attribute without it, so that an attribute may share a parser word's
// name. Names are looked up in upper case.

#include <muParser.h>

#include <vector>

#include "attribute/Attribute.h"
#include "decorator/AttributeMappingDecorator.h"
#include "foundation/vHandle.h"
#include "foundation/vString.h"

class AttributeMappingDecorator::ParserInfo {
 public:
  ParserInfo(vHandle<Store> store, vString const& attributeName, bool writeMode);

  // The attribute this expression makes (its name, type and length).
  void setTarget(Attribute const& target) { m_target = target; }
  Attribute const& getTarget() const { return m_target; }
  // Compiles text and binds its variables to attributes of the store.
  void setExpression(vString const& text);
  vString const& getExpression() const { return m_expression; }
  // The store attributes the expression reads.
  std::vector<vUCString> getSourceNames() const;

  // In write mode the variables name attributes of the set written from,
  // found at each write. The target over those of the set's instances, into
  // instances at onwards of target.
  void write(AttributeSet const& source, std::vector<unsigned int> const& instances, Store& target,
             unsigned int at) const;

  // The target over instances first to last (list: those listed, in list
  // order) of the store, into attribute, which keeps its name.
  void read(Attribute& attribute, unsigned int first, unsigned int last) const;
  void read(Attribute& attribute, std::vector<unsigned int> const& instances) const;

 private:
  struct Variable {
    vString parserName;  // as written in the expression
    Attribute source;
    std::vector<double> values;
    double slot;  // what the compiled expression is bound to
  };

  void myBindSources(AttributeSet const& set) const;
  template <class ReadSource>
  void myEvaluate(Attribute& attribute, unsigned int count, ReadSource readSource) const;
  [[noreturn]] void fatalExpression(mu::ParserError const& error) const;

  vHandle<Store> m_store;
  vString m_attributeName;
  bool m_writeMode;
  Attribute m_target;
  vString m_expression;
  mutable mu::Parser m_parser;
  mutable std::vector<Variable> m_variables;
  // The compiled expression is evaluated column by column (values,
  // variables, arithmetic and comparisons only); otherwise by muParser's
  // bulk mode, with the variables bound to their columns at each read.
  bool m_byColumns;
  mutable std::vector<std::vector<double> > m_columns;
};

#endif
