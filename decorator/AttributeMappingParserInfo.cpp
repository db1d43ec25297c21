#include "decorator/AttributeMappingParserInfo.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "foundation/Message.h"
#include "project/Store.h"

// The loops over columns may write into one of their inputs, element by
// element, which leaves nothing for the vectoriser to check.
#if defined(__clang__)
#define MAPPING_NO_ALIAS _Pragma("clang loop vectorize(assume_safety)")
#elif defined(__GNUC__)
#define MAPPING_NO_ALIAS _Pragma("GCC ivdep")
#else
#define MAPPING_NO_ALIAS
#endif

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

bool isColumnable(mu::ParserByteCode const& code) {
  for (mu::SToken const* t = code.GetBase(); t->Cmd != mu::cmEND; ++t) {
    switch (t->Cmd) {
      case mu::cmLE:
      case mu::cmGE:
      case mu::cmNEQ:
      case mu::cmEQ:
      case mu::cmLT:
      case mu::cmGT:
      case mu::cmADD:
      case mu::cmSUB:
      case mu::cmMUL:
      case mu::cmDIV:
      case mu::cmPOW:
      case mu::cmLAND:
      case mu::cmLOR:
      case mu::cmVAR:
      case mu::cmVAL:
      case mu::cmVARPOW2:
      case mu::cmVARPOW3:
      case mu::cmVARPOW4:
      case mu::cmVARMUL:
        break;
      default:
        return false;
    }
  }
  return true;
}

// One entry of the evaluation stack: a column of values, or one value
// standing for a whole column.
struct ColumnEntry {
  double const* data;
  int buffer;  // -1: not a buffer of the pool
  bool scalar;
  double value;
};

// out[i] = op(a[i], b[i]) with either side possibly one value; out may be
// either side's own column, which elementwise work allows.
template <class Op>
void binary(ColumnEntry const& a, ColumnEntry const& b, double* out, std::size_t n, Op op) {
  double const* x = a.data;
  double const* y = b.data;
  if (a.scalar) {
    double const v = a.value;
    MAPPING_NO_ALIAS
    for (std::size_t i = 0; i < n; ++i) out[i] = op(v, y[i]);
  } else if (b.scalar) {
    double const v = b.value;
    MAPPING_NO_ALIAS
    for (std::size_t i = 0; i < n; ++i) out[i] = op(x[i], v);
  } else {
    MAPPING_NO_ALIAS
    for (std::size_t i = 0; i < n; ++i) out[i] = op(x[i], y[i]);
  }
}

template <class Op, class Take>
ColumnEntry apply(ColumnEntry const& a, ColumnEntry const& b, std::size_t n, Op op, Take& take,
                  std::vector<std::vector<double> >& pool) {
  if (a.scalar && b.scalar) return ColumnEntry{nullptr, -1, true, op(a.value, b.value)};
  int const buffer = a.buffer >= 0 ? a.buffer : (b.buffer >= 0 ? b.buffer : take());
  binary(a, b, pool[buffer].data(), n, op);
  return ColumnEntry{pool[buffer].data(), buffer, false, 0.0};
}

// The compiled code run over n rows, an operation at a time, the same
// arithmetic as muParser's per row. column gives the values of a variable
// by its bound address.
template <class Column>
void evaluateColumns(mu::ParserByteCode const& code, Column column, std::size_t n, double* out,
                     std::vector<std::vector<double> >& pool) {
  std::vector<ColumnEntry> stack;
  std::vector<int> spare;
  for (std::size_t b = 0; b < pool.size(); ++b) spare.push_back(static_cast<int>(b));
  auto take = [&]() {
    int b;
    if (spare.empty()) {
      pool.emplace_back();
      b = static_cast<int>(pool.size()) - 1;
    } else {
      b = spare.back();
      spare.pop_back();
    }
    pool[b].resize(n);
    return b;
  };
  for (mu::SToken const* t = code.GetBase(); t->Cmd != mu::cmEND; ++t) {
    switch (t->Cmd) {
      case mu::cmVAR:
        stack.push_back({column(t->Val.ptr), -1, false, 0.0});
        continue;
      case mu::cmVAL:
        stack.push_back({nullptr, -1, true, t->Val.data2});
        continue;
      case mu::cmVARMUL:
      case mu::cmVARPOW2:
      case mu::cmVARPOW3:
      case mu::cmVARPOW4: {
        int const b = take();
        double* d = pool[b].data();
        double const* x = column(t->Val.ptr);
        double const m = t->Val.data, c = t->Val.data2;
        if (t->Cmd == mu::cmVARMUL)
          for (std::size_t i = 0; i < n; ++i) d[i] = x[i] * m + c;
        else if (t->Cmd == mu::cmVARPOW2)
          for (std::size_t i = 0; i < n; ++i) d[i] = x[i] * x[i];
        else if (t->Cmd == mu::cmVARPOW3)
          for (std::size_t i = 0; i < n; ++i) d[i] = x[i] * x[i] * x[i];
        else
          for (std::size_t i = 0; i < n; ++i) d[i] = x[i] * x[i] * x[i] * x[i];
        stack.push_back({d, b, false, 0.0});
        continue;
      }
      default:
        break;
    }
    ColumnEntry const rhs = stack.back();
    stack.pop_back();
    ColumnEntry const lhs = stack.back();
    stack.pop_back();
    ColumnEntry result;
    switch (t->Cmd) {
      case mu::cmLE:
        result = apply(
            lhs, rhs, n, [](double a, double c) { return double(a <= c); }, take, pool);
        break;
      case mu::cmGE:
        result = apply(
            lhs, rhs, n, [](double a, double c) { return double(a >= c); }, take, pool);
        break;
      case mu::cmNEQ:
        result = apply(
            lhs, rhs, n, [](double a, double c) { return double(a != c); }, take, pool);
        break;
      case mu::cmEQ:
        result = apply(
            lhs, rhs, n, [](double a, double c) { return double(a == c); }, take, pool);
        break;
      case mu::cmLT:
        result = apply(
            lhs, rhs, n, [](double a, double c) { return double(a < c); }, take, pool);
        break;
      case mu::cmGT:
        result = apply(
            lhs, rhs, n, [](double a, double c) { return double(a > c); }, take, pool);
        break;
      case mu::cmADD:
        result = apply(
            lhs, rhs, n, [](double a, double c) { return a + c; }, take, pool);
        break;
      case mu::cmSUB:
        result = apply(
            lhs, rhs, n, [](double a, double c) { return a - c; }, take, pool);
        break;
      case mu::cmMUL:
        result = apply(
            lhs, rhs, n, [](double a, double c) { return a * c; }, take, pool);
        break;
      case mu::cmDIV:
        result = apply(
            lhs, rhs, n, [](double a, double c) { return a / c; }, take, pool);
        break;
      case mu::cmPOW:
        result = apply(
            lhs, rhs, n, [](double a, double c) { return std::pow(a, c); }, take, pool);
        break;
      case mu::cmLAND:
        result = apply(
            lhs, rhs, n, [](double a, double c) { return double(a && c); }, take, pool);
        break;
      default:
        result = apply(
            lhs, rhs, n, [](double a, double c) { return double(a || c); }, take, pool);
        break;
    }
    if (rhs.buffer >= 0 && rhs.buffer != result.buffer) spare.push_back(rhs.buffer);
    if (lhs.buffer >= 0 && lhs.buffer != result.buffer) spare.push_back(lhs.buffer);
    stack.push_back(result);
  }
  if (stack.back().scalar)
    std::fill(out, out + n, stack.back().value);
  else
    std::copy(stack.back().data, stack.back().data + n, out);
}

template <class T>
void fromDoubles(std::vector<double> const& values, T* out) {
  for (std::size_t i = 0; i < values.size(); ++i) out[i] = static_cast<T>(values[i]);
}

}  // namespace

AttributeMappingDecorator::ParserInfo::ParserInfo(vHandle<Store> store, vString const& attributeName, bool writeMode)
    : m_store(store), m_attributeName(attributeName), m_writeMode(writeMode), m_byColumns(false) {
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
                 "The expression '%s' for the attribute '%s' is in error at position %d: %s", m_expression.c_str(),
                 m_attributeName.c_str(), error.GetPos(), error.GetMsg().c_str());
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
    Variable variable;
    variable.parserName = entry.first.c_str();
    if (m_writeMode) {
      // Found in the set written from, at each write.
      variable.source = Attribute(upper, upper, vFLOAT64);
      m_variables.push_back(variable);
      continue;
    }
    if (!m_store->hasAttribute(upper))
      Message::fatal("AttributeMappingDecorator::ParserInfo::setExpression", 0,
                     "The underlying store does not contain the attribute '%s' to satisfy the expression '%s' for "
                     "the new attribute '%s'",
                     upper.c_str(), text.c_str(), m_attributeName.c_str());
    variable.source = m_store->getAttribute(upper);
    m_variables.push_back(variable);
  }
  // Compiled now, with the variables bound to one value each, so that a
  // fault shows at once and not at the first read.
  try {
    for (Variable& v : m_variables) {
      v.slot = 1.0;
      m_parser.DefineVar(v.parserName.c_str(), &v.slot);
    }
    m_parser.Eval();
    m_byColumns = isColumnable(m_parser.GetByteCode());
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
      if (!m_byColumns) m_parser.DefineVar(v.parserName.c_str(), v.values.data());
    }
    results.resize(count);
    if (count > 0 && m_byColumns) {
      auto column = [this](double const* bound) -> double const* {
        for (Variable const& v : m_variables)
          if (&v.slot == bound) return v.values.data();
        Message::fatal("AttributeMappingDecorator::ParserInfo::read", 0, "The expression '%s' lost a variable.",
                       m_expression.c_str());
      };
      // A chunk at a time, so that the columns stay in the cache.
      std::size_t const chunk = 2048;
      for (std::size_t at = 0; at < count; at += chunk) {
        std::size_t const rows = std::min<std::size_t>(chunk, count - at);
        evaluateColumns(
            m_parser.GetByteCode(), [&](double const* bound) { return column(bound) + at; }, rows, results.data() + at,
            m_columns);
      }
    } else if (count > 0) {
      m_parser.Eval(results.data(), static_cast<int>(count));
    }
  } catch (mu::ParserError const& error) {
    fatalExpression(error);
  }
  Attribute made(m_target);
  made.resize(count);
  if (count > 0) {
    switch (made.getDataType()) {
      case vINT16:
        fromDoubles(results, made.getInt16Pointer(1));
        break;
      case vINT32:
        fromDoubles(results, made.getInt32Pointer(1));
        break;
      case vINT64:
        fromDoubles(results, made.getInt64Pointer(1));
        break;
      case vFLOAT32:
        fromDoubles(results, made.getFloat32Pointer(1));
        break;
      default:
        fromDoubles(results, made.getFloat64Pointer(1));
        break;
    }
  }
  vUCString const name = attribute.getName();
  attribute.transferData(made);
  attribute.setName(name);
}

void AttributeMappingDecorator::ParserInfo::read(Attribute& attribute, unsigned int first, unsigned int last) const {
  unsigned int const count = first == 0 && last == 0 ? 0 : (last == 0 ? m_store->getNInstances() : last) - first + 1;
  myEvaluate(attribute, count, [&](Attribute& source) { m_store->read(source, first, last); });
}

void AttributeMappingDecorator::ParserInfo::read(Attribute& attribute,
                                                 std::vector<unsigned int> const& instances) const {
  myEvaluate(attribute, static_cast<unsigned int>(instances.size()),
             [&](Attribute& source) { m_store->read(source, instances); });
}

void AttributeMappingDecorator::ParserInfo::myBindSources(AttributeSet const& set) const {
  for (Variable& v : m_variables) v.source = set.getAttribute(v.source.getName());
}

void AttributeMappingDecorator::ParserInfo::write(AttributeSet const& source,
                                                  std::vector<unsigned int> const& instances, Store& target,
                                                  unsigned int at) const {
  myBindSources(source);
  Attribute made(m_target);
  myEvaluate(made, static_cast<unsigned int>(instances.size()),
             [&](Attribute& column) { source.read(column, instances); });
  if (made.getNInstances() > 0) target.write(made, at, at + made.getNInstances() - 1);
}
