// Exception.h: the one exception type of the library.
#pragma once

#include <exception>
#include <string>

#include "orv/core/Export.h"

namespace shr {

/// A recorded failure: where it was raised, its code and its message.
///
/// Codes and their meanings are listed in orv/core/Error.h.  All texts are copied; none is ever null.
class ORV_API Exception : public std::exception {
 public:
  /// @param module   the module that failed, "ORVCore.dll" for this library on every platform.
  /// @param file     the source unit, its file name without extension.
  /// A null text is kept as the empty text.
  Exception(const char* module, const char* file, int line, int code, const char* message);
  Exception(const Exception&);
  Exception& operator=(const Exception&);
  ~Exception() override;

  const char* Module() const;
  const char* File() const;
  int Line() const;
  int Code() const;
  const char* Message() const;
  const char* what() const noexcept override;  ///< the same text as Message()

 private:
  std::string m_Module;
  std::string m_File;
  int m_Line;
  int m_Code;
  std::string m_Message;
};

}  // namespace shr
