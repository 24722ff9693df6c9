#include "dataview/sheets/DecimalPoint.h"

#include <locale.h>

#include <string>

namespace kv {

#ifdef _WIN32

struct DecimalPoint::Before {
  int perThread = 0;
  std::string name = {};
};

DecimalPoint::DecimalPoint() : mBefore(std::make_unique<Before>()) {
  mBefore->perThread = _configthreadlocale(_ENABLE_PER_THREAD_LOCALE);
  if (const char* name = setlocale(LC_NUMERIC, nullptr)) mBefore->name = name;
  setlocale(LC_NUMERIC, "C");
}

DecimalPoint::~DecimalPoint() {
  setlocale(LC_NUMERIC, mBefore->name.c_str());
  _configthreadlocale(mBefore->perThread);
}

#else

struct DecimalPoint::Before {
  locale_t with = nullptr;
  locale_t without = nullptr;
};

DecimalPoint::DecimalPoint() : mBefore(std::make_unique<Before>()) {
  mBefore->with = newlocale(LC_NUMERIC_MASK, "C", nullptr);
  mBefore->without = uselocale(mBefore->with);
}

DecimalPoint::~DecimalPoint() {
  uselocale(mBefore->without);
  freelocale(mBefore->with);
}

#endif

}  // namespace kv
