// CommaLocale.h: a host that writes its numbers with a decimal comma.
#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <string>

namespace orv::test {

/// Sets the process's locale to de_DE.UTF-8 as long as it lives.
class CommaLocale {
 public:
  CommaLocale() : m_Before(std::setlocale(LC_ALL, nullptr)) {
    m_bAvailable = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr &&
                   std::strcmp(std::localeconv()->decimal_point, ",") == 0;
  }
  ~CommaLocale() { std::setlocale(LC_ALL, m_Before.c_str()); }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

  bool Available() const { return m_bAvailable; }

 private:
  std::string m_Before;
  bool m_bAvailable;
};

}  // namespace orv::test

/// Runs the rest of a test under a decimal comma; skips it where the machine has no such locale.
#define ORV_WITH_COMMA_LOCALE()                    \
  const ::orv::test::CommaLocale underCommaLocale; \
  if (!underCommaLocale.Available()) GTEST_SKIP() << "NOT TESTED: this machine has no locale de_DE.UTF-8"
