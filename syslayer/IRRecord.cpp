#include "syslayer/IRRecord.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "syslayer/SSHeap.h"
#include "syslayer/SysUtil.h"

namespace {

int32_t const kKind = 1, kChanged = 2, kValue = 3, kSecond = 4;

// One value on its way in or out, in its own kind.
struct Value {
  int32_t kind = 0;  // IR_INT, IR_FLOAT, IR_DOUBLE or IR_TEXT
  double number = 0;
  std::string text;
};

int32_t slotTypeOf(int32_t kind) {
  switch (kind) {
    case IR_INT: return SS_INT;
    case IR_FLOAT: return SS_FLOAT;
    case IR_DOUBLE: return SS_DOUBLE;
    case IR_TEXT: return SS_TEXT;
    case IR_ARRAY + IR_INT: return SS_AINT;
    case IR_ARRAY + IR_FLOAT: return SS_AFLOAT;
    case IR_ARRAY + IR_DOUBLE: return SS_ADOUBLE;
    case IR_ARRAY + IR_TEXT: return SS_ATEXT;
  }
  return SS_UNSET;
}

int32_t kindOf(int32_t id) {
  int32_t kind = 0;
  ss_getnth_(id, kKind, kind);
  return kind;
}

int32_t arraySize(int32_t id) {
  int32_t n = 0;
  ss_asize_(id, kValue, n);
  return n;
}

void markChanged(int32_t id) { ss_putnth_(id, kChanged, 1); }

bool toNumber(Value const& v, double& out) {
  if (v.kind != IR_TEXT) {
    out = v.number;
    return true;
  }
  std::string t = v.text;
  while (!t.empty() && t.back() == ' ') t.pop_back();
  if (t.empty()) return false;
  char* end = nullptr;
  errno = 0;
  out = std::strtod(t.c_str(), &end);
  return errno == 0 && end != nullptr && *end == '\0';
}

bool toInt(Value const& v, int32_t& out) {
  double d;
  if (!toNumber(v, d) || !(d > -2147483649.0 && d < 2147483648.0)) return false;
  out = static_cast<int32_t>(d);  // truncation, as the system has always done
  return true;
}

std::string format(int32_t kind, double value) {
  char buf[64];
  if (kind == IR_INT)
    std::snprintf(buf, sizeof buf, "%d", static_cast<int32_t>(value));
  else if (kind == IR_FLOAT)
    std::snprintf(buf, sizeof buf, "%.7g", value);
  else
    std::snprintf(buf, sizeof buf, "%.15g", value);
  return buf;
}

std::string toText(Value const& v) { return v.kind == IR_TEXT ? v.text : format(v.kind, v.number); }

std::string textAt(int32_t pointer) {
  if (pointer <= 0 || ss_[pointer - 3] != SS_TEXTMARK) return std::string();
  return std::string(reinterpret_cast<char const*>(ss_ + pointer + 1), static_cast<size_t>(ss_[pointer]));
}

// Element `index` (0: the scalar or the first element).
bool readValue(int32_t id, int32_t index, Value& v) {
  int32_t const kind = kindOf(id);
  if (kind == 0) return false;
  v.kind = kind & ~IR_ARRAY;
  if (!(kind & IR_ARRAY)) {
    if (index > 1) return false;
    int32_t word = 0;
    if (v.kind == IR_INT) {
      ss_getnth_(id, kValue, word);
      v.number = word;
    } else if (v.kind == IR_FLOAT) {
      ss_getnth_(id, kValue, word);
      float f;
      std::memcpy(&f, &word, sizeof f);
      v.number = f;
    } else if (v.kind == IR_DOUBLE) {
      ss_getdouble_(id, kValue, v.number);
    } else {
      ss_getnth_(id, kValue, word);
      v.text = textAt(word);
    }
    return true;
  }
  int32_t const e = index == 0 ? 1 : index;
  if (e > arraySize(id)) return false;
  int32_t word = 0;
  if (v.kind == IR_DOUBLE) {
    ss_getadouble_(id, kValue, e, v.number);
  } else if (v.kind == IR_TEXT) {
    int32_t a = 0;
    ss_getnth_(id, kValue, a);
    v.text = textAt(ss_[a + 3 + e - 1]);
  } else {
    ss_getaword_(id, kValue, e, word);
    if (v.kind == IR_INT) {
      v.number = word;
    } else {
      float f;
      std::memcpy(&f, &word, sizeof f);
      v.number = f;
    }
  }
  return true;
}

// Stores v into element e (from 1) of the array, converted to its kind.
void putElement(int32_t id, int32_t e, Value const& v) {
  int32_t const kind = kindOf(id) & ~IR_ARRAY;
  if (kind == IR_TEXT) {
    std::string const t = toText(v);
    ss_putatext_(id, kValue, e, t.data(), static_cast<int32_t>(t.size()));
    return;
  }
  double d = 0;
  if (!toNumber(v, d)) d = 0;
  if (kind == IR_DOUBLE) {
    ss_putadouble_(id, kValue, e, d);
  } else if (kind == IR_FLOAT) {
    float const f = static_cast<float>(d);
    int32_t word;
    std::memcpy(&word, &f, sizeof word);
    ss_putaword_(id, kValue, e, word);
  } else {
    int32_t i = 0;
    toInt(v, i);
    ss_putaword_(id, kValue, e, i);
  }
}

void putScalar(int32_t id, Value const& v) {
  ss_def_(id, kSecond, SS_UNSET);
  ss_def_(id, kValue, slotTypeOf(v.kind));
  ss_putnth_(id, kKind, v.kind);
  if (v.kind == IR_INT) {
    ss_putnth_(id, kValue, static_cast<int32_t>(v.number));
  } else if (v.kind == IR_FLOAT) {
    float const f = static_cast<float>(v.number);
    int32_t word;
    std::memcpy(&word, &f, sizeof word);
    ss_putnth_(id, kValue, word);
  } else if (v.kind == IR_DOUBLE) {
    ss_putdouble_(id, kValue, v.number);
  } else {
    ss_puttext_(id, kValue, v.text.data(), static_cast<int32_t>(v.text.size()));
  }
}

void store(int32_t id, int32_t index, Value const& v) {
  if (index < 0) er_fatal_("IR_put", "Illegal index");
  if (index == 0) {
    putScalar(id, v);
  } else {
    if (kindOf(id) == 0) {
      ss_def_(id, kValue, slotTypeOf(IR_ARRAY + v.kind));
      ss_putnth_(id, kKind, IR_ARRAY + v.kind);
    }
    if (!(kindOf(id) & IR_ARRAY)) ir_setn_(id, 1);
    if (index > arraySize(id)) ss_alloc_(id, kValue, index);
    putElement(id, index, v);
  }
  markChanged(id);
}

void blankFill(std::string const& s, char* out, int32_t length) {
  if (length <= 0) return;
  size_t const n = s.size() < static_cast<size_t>(length) ? s.size() : static_cast<size_t>(length);
  std::memcpy(out, s.data(), n);
  std::memset(out + n, ' ', static_cast<size_t>(length) - n);
}

}  // namespace

void ir_init_(int32_t& root) {
  int32_t ssRoot;
  ss_init_(ssRoot);
  int32_t type = 0;
  ss_gettype_(ssRoot, 1, type);
  ss_getnth_(ssRoot, 1, root);
  if (type == SS_STRUCT && root != 0) return;
  int32_t const types[] = {SS_ASTRUCT};
  ss_defnth_(root, ssRoot, 1, 1, types);
}

void ir_new_(int32_t& id) {
  int32_t root;
  ir_init_(root);
  int32_t const types[] = {SS_INT, SS_INT, SS_UNSET, SS_UNSET};
  ss_define_(id, root, 4, types);
  int32_t n = 0;
  ss_asize_(root, 1, n);
  ss_alloc_(root, 1, n + 1);
  ss_putaword_(root, 1, n + 1, id);
}

void ir_kind_(int32_t const& id, int32_t& kind) { kind = kindOf(id); }

void ir_n_(int32_t const& id, int32_t& n) {
  int32_t const kind = kindOf(id);
  n = kind == 0 ? 0 : (kind & IR_ARRAY) ? arraySize(id) : 1;
}

void ir_setn_(int32_t const& id, int32_t const& n) {
  int32_t const kind = kindOf(id);
  if (n < 0) er_fatal_("IR_setn", "Illegal size");
  if (kind == 0 || !(kind & IR_ARRAY)) {
    Value old;
    bool const had = readValue(id, 0, old);
    int32_t const arrayKind = IR_ARRAY + (kind == 0 ? IR_INT : kind);
    ss_def_(id, kSecond, SS_UNSET);
    ss_def_(id, kValue, slotTypeOf(arrayKind));
    ss_putnth_(id, kKind, arrayKind);
    ss_alloc_(id, kValue, n);
    if (had && n >= 1) putElement(id, 1, old);
  } else {
    ss_alloc_(id, kValue, n);
  }
  markChanged(id);
}

void ir_puti_(int32_t const& id, int32_t const& index, int32_t const& value) {
  Value v;
  v.kind = IR_INT;
  v.number = value;
  store(id, index, v);
}

void ir_putf_(int32_t const& id, int32_t const& index, float const& value) {
  Value v;
  v.kind = IR_FLOAT;
  v.number = value;
  store(id, index, v);
}

void ir_putd_(int32_t const& id, int32_t const& index, double const& value) {
  Value v;
  v.kind = IR_DOUBLE;
  v.number = value;
  store(id, index, v);
}

void ir_putl_(int32_t const& id, int32_t const& index, int32_t const& value) {
  ir_puti_(id, index, value != 0 ? 1 : 0);
}

void ir_putt_(int32_t const& id, int32_t const& index, char const* text) {
  ir_putnt_(id, index, text, text ? static_cast<int32_t>(std::strlen(text)) : 0);
}

void ir_putnt_(int32_t const& id, int32_t const& index, char const* text, int32_t const& length) {
  Value v;
  v.kind = IR_TEXT;
  if (text && length > 0) v.text.assign(text, static_cast<size_t>(length));
  store(id, index, v);
}

void ir_geti_(int32_t const& id, int32_t const& index, int32_t& value, int32_t& status) {
  Value v;
  value = 0;
  status = readValue(id, index, v) && toInt(v, value) ? 1 : 0;
}

void ir_getf_(int32_t const& id, int32_t const& index, float& value, int32_t& status) {
  Value v;
  double d = 0;
  status = readValue(id, index, v) && toNumber(v, d) ? 1 : 0;
  value = static_cast<float>(d);
}

void ir_getd_(int32_t const& id, int32_t const& index, double& value, int32_t& status) {
  Value v;
  value = 0;
  status = readValue(id, index, v) && toNumber(v, value) ? 1 : 0;
}

void ir_gett_(int32_t const& id, int32_t const& index, char* text, int32_t const& length, int32_t& status) {
  Value v;
  status = readValue(id, index, v) ? 1 : 0;
  blankFill(status ? toText(v) : std::string(), text, length);
}

void ir_getisr_(int32_t const& id, int32_t const& first, int32_t const& count, int32_t* values, int32_t& status) {
  status = first >= 1 ? 1 : 0;
  for (int32_t k = 0; k < count; ++k) {
    int32_t s = 0;
    ir_geti_(id, first + k, values[k], s);
    if (!s) status = 0;
  }
}

void ir_getfsr_(int32_t const& id, int32_t const& first, int32_t const& count, float* values, int32_t& status) {
  status = first >= 1 ? 1 : 0;
  for (int32_t k = 0; k < count; ++k) {
    int32_t s = 0;
    ir_getf_(id, first + k, values[k], s);
    if (!s) status = 0;
  }
}

void ir_getlsr_(int32_t const& id, int32_t const& first, int32_t const& count, int32_t* values, int32_t& status) {
  status = first >= 1 ? 1 : 0;
  for (int32_t k = 0; k < count; ++k) {
    double d = 0;
    int32_t s = 0;
    ir_getd_(id, first + k, d, s);
    values[k] = d != 0 ? 1 : 0;
    if (!s) status = 0;
  }
}

void ir_gettsr_(int32_t const& id, int32_t const& first, int32_t const& count, char* texts, int32_t const& width,
                int32_t& status) {
  status = first >= 1 ? 1 : 0;
  for (int32_t k = 0; k < count; ++k) {
    int32_t s = 0;
    ir_gett_(id, first + k, texts + static_cast<size_t>(k) * static_cast<size_t>(width), width, s);
    if (!s) status = 0;
  }
}

void ir_convert_(int32_t const& fromKind, int32_t const& from, int32_t const& toKind, int32_t& to, int32_t& status) {
  double d;
  if (fromKind == IR_INT) {
    d = from;
  } else if (fromKind == IR_FLOAT) {
    float f;
    std::memcpy(&f, &from, sizeof f);
    d = f;
  } else {
    status = 0;
    return;
  }
  double out = 0;
  ir_convert8_(IR_DOUBLE, d, toKind, out, status);
  if (!status) return;
  if (toKind == IR_INT) {
    to = static_cast<int32_t>(out);
  } else if (toKind == IR_FLOAT) {
    float const f = static_cast<float>(out);
    std::memcpy(&to, &f, sizeof to);
  } else {
    status = 0;
  }
}

void ir_convert8_(int32_t const& fromKind, double const& from, int32_t const& toKind, double& to, int32_t& status) {
  status = 1;
  if (fromKind != IR_INT && fromKind != IR_FLOAT && fromKind != IR_DOUBLE) {
    status = 0;
    return;
  }
  if (toKind == IR_INT) {
    Value v;
    v.kind = IR_DOUBLE;
    v.number = from;
    int32_t i = 0;
    status = toInt(v, i) ? 1 : 0;
    to = i;
  } else if (toKind == IR_FLOAT) {
    to = static_cast<float>(from);
  } else if (toKind == IR_DOUBLE) {
    to = from;
  } else {
    status = 0;
  }
}

void ir_format_(int32_t const& kind, double const& value, char* text, int32_t const& length) {
  blankFill(kind == IR_INT || kind == IR_FLOAT || kind == IR_DOUBLE ? format(kind, value) : std::string(), text,
            length);
}
