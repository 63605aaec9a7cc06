// ORVReadSystem's own: code and unit.  The grammar and its messages are tested through the command line, tests/tools.
#include <gtest/gtest.h>

#include "orv/convert/SystemText.h"
#include "orv/core/internal/Fail.h"
#include "tests/support/Raises.h"

namespace orv {
namespace {

TEST(ReadSystem, FailuresHaveOneCodeAndUnit) {
  EXPECT_RAISES(ORVReadSystem(""), ErrBadParameter, "SystemText", "the definition is empty");
  EXPECT_RAISES(ORVReadSystem("a=1,a=2"), ErrBadParameter, "SystemText", "'a' is given twice");
  EXPECT_RAISES(ORVReadSystem("%s%n,x=1"), ErrBadParameter, "SystemText",
                "'%s%n' is not of the form key=value");
  EXPECT_RAISES(ORVReadSystem("<broken"), ErrBadParameter, "SystemText",
                "not a definition: Corrupt coordinate system data.  Malformed or missing header.");
  EXPECT_RAISES(ORVReadSystem("/no/such/file"), ErrBadParameter, "SystemText",
                "unknown system '/no/such/file'; and there is no such file");
  EXPECT_EQ(ORVReadSystem("a=1,f=0")->Type(), CSTypeORV);
}

}  // namespace
}  // namespace orv
