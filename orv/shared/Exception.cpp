#include "orv/shared/Exception.h"

namespace shr {

namespace {
std::string TextOf(const char* text) { return text ? text : ""; }
}  // namespace

Exception::Exception(const char* module, const char* file, int line, int code, const char* message)
    : m_Module(TextOf(module)),
      m_File(TextOf(file)),
      m_Line(line),
      m_Code(code),
      m_Message(TextOf(message)) {}

Exception::Exception(const Exception&) = default;
Exception& Exception::operator=(const Exception&) = default;
Exception::~Exception() = default;

const char* Exception::Module() const { return m_Module.c_str(); }
const char* Exception::File() const { return m_File.c_str(); }
int Exception::Line() const { return m_Line; }
int Exception::Code() const { return m_Code; }
const char* Exception::Message() const { return m_Message.c_str(); }
const char* Exception::what() const noexcept { return m_Message.c_str(); }

}  // namespace shr
