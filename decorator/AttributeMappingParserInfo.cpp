#include "decorator/AttributeMappingParserInfo.h"

#include <cctype>
#include <cmath>

#include "foundation/Message.h"
#include "project/Store.h"

namespace {

char const* const kNameChars = "\\0123456789_.abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

double toInteger(double v) { return std::trunc(v); }
double shr(double a, double b) {
  return static_cast<double>(static_cast<long long>(toInteger(a)) >> static_cast<long long>(toInteger(b)));
}
double shl(double a, double b) {
  return static_cast<double>(static_cast<long long>(toInteger(a)) << static_cast<long long>(toInteger(b)));
}
double bitAnd(double a, double b) {
  return static_cast<double>(static_cast<long long>(toInteger(a)) & static_cast<long long>(toInteger(b)));
}
double bitOr(double a, double b) {
  return static_cast<double>(static_cast<long long>(toInteger(a)) | static_cast<long long>(toInteger(b)));
}

// A literal of digits in base (2 or 16) behind "0" and the letter.
int isBasedVal(char const* expr, int* pos, double* val, char letter, int base) {
  if (expr[0] != '0' || std::tolower(static_cast<unsigned char>(expr[1])) != letter) return 0;
  unsigned long long value = 0;
  int i = 2;
  for (;; ++i) {
    int const c = std::tolower(static_cast<unsigned char>(expr[i]));
    int digit = std::isdigit(c) ? c - '0' : (c >= 'a' && c <= 'f' ? c - 'a' + 10 : base);
    if (digit >= base) break;
    value = value * base + digit;
  }
  if (i == 2) return 0;
  *pos += i;
  *val = static_cast<double>(value);
  return 1;
}
int isHexVal(char const* expr, int* pos, double* val) { return isBasedVal(expr, pos, val, 'x', 16); }
int isBinVal(char const* expr, int* pos, double* val) { return isBasedVal(expr, pos, val, 'b', 2); }

void toDoubles(Attribute const& source, std::vector<double>& out) {
  unsigned int const n = source.getNInstances();
  out.resize(n);
  if (n == 0) return;
  switch (source.getDataType()) {
    case vINT16: {
      short const* p = source.getInt16Pointer(1);
      for (unsigned int i = 0; i < n; ++i) out[i] = p[i];
      break;
    }
    case vINT32: {
      int const* p = source.getInt32Pointer(1);
      for (unsigned int i = 0; i < n; ++i) out[i] = p[i];
      break;
    }
    case vINT64: {
      long long const* p = source.getInt64Pointer(1);
      for (unsigned int i = 0; i < n; ++i) out[i] = static_cast<double>(p[i]);
      break;
    }
    case vFLOAT32: {
      float const* p = source.getFloat32Pointer(1);
      for (unsigned int i = 0; i < n; ++i) out[i] = p[i];
      break;
    }
    case vFLOAT64: {
      double const* p = source.getFloat64Pointer(1);
      for (unsigned int i = 0; i < n; ++i) out[i] = p[i];
      break;
    }
    default:
      for (unsigned int i = 0; i < n; ++i) out[i] = source.getValue(i + 1);
  }
}

template <class T>
void fromDoubles(std::vector<double> const& values, T* out) {
  for (std::size_t i = 0; i < values.size(); ++i) out[i] = static_cast<T>(values[i]);
}

}  // namespace

AttributeMappingDecorator::ParserInfo::ParserInfo(vHandle<Store> store, vString const& attributeName, bool writeMode)
    : m_store(store), m_attributeName(attributeName), m_writeMode(writeMode) {
  m_parser.DefineNameChars(kNameChars);
  m_parser.DefineOprt(">>", shr, 5);
  m_parser.DefineOprt("<<", shl, 5);
  m_parser.DefineOprt("&", bitAnd, 1);
  m_parser.DefineOprt("|", bitOr, 1);
  m_parser.AddValIdent(isHexVal);
  m_parser.AddValIdent(isBinVal);
}

void AttributeMappingDecorator::ParserInfo::fatalExpression(mu::ParserError const& error) const {
  Message::fatal("AttributeMappingDecorator::ParserInfo::setExpression", 0,
                 "The expression '%s' for the attribute '%s' is in error: %s (at position %d).", m_expression.c_str(),
                 m_attributeName.c_str(), error.GetMsg().c_str(), error.GetPos());
}

void AttributeMappingDecorator::ParserInfo::setExpression(vString const& text) {
  m_expression = text;
  m_variables.clear();
  mu::varmap_type used;
  try {
    m_parser.SetExpr(text.c_str());
    used = m_parser.GetUsedVar();
  } catch (mu::ParserError const& error) {
    fatalExpression(error);
  }
  for (auto const& entry : used) {
    std::string name = entry.first;
    if (!name.empty() && name[0] == '\\') name.erase(0, 1);
    vUCString upper(name.c_str());
    if (!m_store->hasAttribute(upper))
      Message::fatal("AttributeMappingDecorator::ParserInfo::setExpression", 0,
                     "The underlying store does not contain the attribute '%s' to satisfy the expression '%s' for "
                     "the new attribute '%s'",
                     upper.c_str(), text.c_str(), m_attributeName.c_str());
    Variable variable;
    variable.parserName = entry.first.c_str();
    variable.source = m_store->getAttribute(upper);
    m_variables.push_back(variable);
  }
  // Compiled now, with the variables bound to one value each, so that a
  // fault shows at once and not at the first read.
  try {
    for (Variable& v : m_variables) {
      v.values.assign(1, 1.0);
      m_parser.DefineVar(v.parserName.c_str(), v.values.data());
    }
    m_parser.Eval();
  } catch (mu::ParserError const& error) {
    fatalExpression(error);
  }
}

std::vector<vUCString> AttributeMappingDecorator::ParserInfo::getSourceNames() const {
  std::vector<vUCString> names;
  for (Variable const& v : m_variables) names.push_back(v.source.getName());
  return names;
}

template <class ReadSource>
void AttributeMappingDecorator::ParserInfo::myEvaluate(Attribute& attribute, unsigned int count,
                                                       ReadSource readSource) const {
  std::vector<double> results;
  try {
    for (Variable& v : m_variables) {
      Attribute source(v.source);
      readSource(source);
      toDoubles(source, v.values);
      // The store below has the last word on how many there are.
      count = source.getNInstances();
      m_parser.DefineVar(v.parserName.c_str(), v.values.data());
    }
    results.resize(count);
    if (count > 0) m_parser.Eval(results.data(), static_cast<int>(count));
  } catch (mu::ParserError const& error) {
    fatalExpression(error);
  }
  Attribute made(m_target);
  made.resize(count);
  if (count > 0) {
    switch (made.getDataType()) {
      case vINT16: fromDoubles(results, made.getInt16Pointer(1)); break;
      case vINT32: fromDoubles(results, made.getInt32Pointer(1)); break;
      case vINT64: fromDoubles(results, made.getInt64Pointer(1)); break;
      case vFLOAT32: fromDoubles(results, made.getFloat32Pointer(1)); break;
      default: fromDoubles(results, made.getFloat64Pointer(1)); break;
    }
  }
  vUCString const name = attribute.getName();
  attribute.transferData(made);
  attribute.setName(name);
}

void AttributeMappingDecorator::ParserInfo::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  unsigned int const count =
      first == 0 && last == 0 ? 0 : (last == 0 ? m_store->getNInstances() : last) - first + 1;
  myEvaluate(attribute, count, [&](Attribute& source) { m_store->read(source, first, last); });
}

void AttributeMappingDecorator::ParserInfo::read(Attribute& attribute,
                                                 std::vector<unsigned int> const& instances) const {
  myEvaluate(attribute, static_cast<unsigned int>(instances.size()),
             [&](Attribute& source) { m_store->read(source, instances); });
}
