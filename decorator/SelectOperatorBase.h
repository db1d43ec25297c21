#ifndef DECORATOR_SELECTOPERATORBASE_H
#define DECORATOR_SELECTOPERATORBASE_H

// SelectOperatorBase: one step of a selection. Operators are the
// application's: this system fixes only how a SelectOperatorCollection
// drives them.
//
// An evaluating operator (class EvaluatingOperator) names the attributes it
// reads and, for each batch of instances, writes a byte mask: one byte per
// instance of the batch, non-zero for selected. Its mask has ten bytes of
// slack behind the batch, so an operator may write a little past the last
// instance. Every other class is a logic operator (LogicNot, LogicOr,
// LogicAnd by type) that joins the mask after it to the masks before; it is
// called as well, with a null mask. The types 0 to 5 and the classes other
// than EvaluatingOperator are the application's to name.

#include <list>
#include <vector>

#include "attribute/Attribute.h"
#include "foundation/vString.h"
#include "foundation/vUCString.h"

class SelectOperatorBase {
 public:
  enum OperatorType {
    LogicNot = 6,              // complement the next mask
    LogicOr = 7,               // join the next mask with or
    LogicAnd = 8,              // join the next mask with and
    NoAttributeOperator = 9    // needs the batch loop though it reads no attribute
  };
  enum OperatorClass {
    EvaluatingOperator = 2     // gets a mask
  };

  explicit SelectOperatorBase(vString const& name = vString(), int type = 0, int operatorClass = EvaluatingOperator);
  virtual ~SelectOperatorBase();

  // Marks the instances first to last (nInstances of them) that this
  // operator selects in mask[0 .. nInstances-1]; mask is null for a logic
  // operator. batchAttributes hold this batch's values of every attribute
  // the collection's operators read, instance 1 being instance first.
  virtual void doEvaluate(std::list<Attribute> const& batchAttributes, unsigned int nInstances, unsigned char* mask,
                          unsigned int first, unsigned int last) = 0;
  // Told before a new tolerance is kept; nothing here.
  virtual void doNewTolerance(double oldTolerance, double newTolerance);

  vString const& getOperatorName() const { return m_name; }
  void setOperatorName(vString const& name) { m_name = name; }
  int getNumAttributes() const { return static_cast<int>(m_attributeNames.size()); }
  // The 0-based index-th attribute name.
  vUCString const& getAttributeName(int index) const;
  void addAttribute(vUCString const& name) { m_attributeNames.push_back(name); }
  std::vector<vUCString> getAllAttributeNames() const { return m_attributeNames; }
  int getOperatorType() const { return m_type; }
  void setOperatorType(int type) { m_type = type; }
  int getOperatorClass() const { return m_class; }
  void setOperatorClass(int operatorClass) { m_class = operatorClass; }
  bool isEvaluating() const { return m_class == EvaluatingOperator; }
  void setDebugMode(bool debug) { m_debug = debug; }
  bool getDebugMode() const { return m_debug; }
  double getTolerance() const { return m_tolerance; }
  // doNewTolerance(old, new), then keeps the new value.
  void setTolerance(double tolerance);

 private:
  vString m_name;
  bool m_debug;
  std::vector<vUCString> m_attributeNames;
  double m_tolerance;
  int m_type;
  int m_class;
};

#endif
