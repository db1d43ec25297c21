#include "attribute/BuildConverter.h"

#include "attribute/Float32DataConverter.h"
#include "attribute/Float64DataConverter.h"
#include "attribute/Int32DataConverter.h"
#include "attribute/Int64DataConverter.h"
#include "attribute/NullDataConverter.h"
#include "attribute/OriginalDataConverter.h"
#include "foundation/Message.h"
#include "foundation/UtlExcept.h"

namespace {

char const* const kLabel = "BuildConverter::createConverter()";

// The process's one converter of type C, made on first use.
template <class C>
vHandle<DataConverterI> const& shared(vString const& arguments, vHandle<DataConverterI> const& next) {
  static vHandle<DataConverterI> const converter(new C(arguments, next));
  return converter;
}

}  // namespace

vHandle<DataConverterI> BuildConverter::createConverter(vString const& text) {
  vHandle<DataConverterI> head;
  vString rest(text);
  for (;;) {
    int const open = rest.search('(');
    if (open <= 0) break;
    vString name = rest.substr(0, static_cast<unsigned int>(open));
    name.strip();
    name.toLowerCase();
    int const close = rest.search(")", open + 1);
    if (close < 0) Message::fatal(kLabel, 0, "Missing ')' on conversion string '%s'.", text.c_str());
    vString arguments = rest.substr(static_cast<unsigned int>(open + 1), static_cast<unsigned int>(close - open - 1));
    arguments.replace(',', ' ');
    arguments.strip();

    if (name == "null")
      head = shared<NullDataConverter>(arguments, head);
    else if (name == "int32")
      head = shared<Int32DataConverter>(arguments, head);
    else if (name == "int64")
      head = shared<Int64DataConverter>(arguments, head);
    else if (name == "float32")
      head = shared<Float32DataConverter>(arguments, head);
    else if (name == "float64")
      head = shared<Float64DataConverter>(arguments, head);
    else if (name == "original")
      head = shared<OriginalDataConverter>(arguments, head);
    else
      throw UtlExcept(vString("BuildConverter::createConverter(): unknown converter ") + name, vString(kLabel));

    rest = rest.substr(static_cast<unsigned int>(close + 1));
  }
  return head;
}
