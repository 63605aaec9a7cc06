#include "orv/interop/internal/WktParts.h"

#include "orv/core/internal/Angle.h"
#include "orv/core/internal/Fail.h"
#include "orv/core/internal/Number.h"
#include "orv/core/internal/Text.h"

ORV_UNIT("Interchange")

namespace orv::internal {

namespace {
constexpr const char* kUnits[] = {"ANGLEUNIT", "LENGTHUNIT", "SCALEUNIT", "TIMEUNIT", "UNIT", nullptr};
}  // namespace

bool IsAny(const WktNode& node, const char* const* keywords) {
  for (; *keywords; ++keywords) {
    if (node.Is(*keywords)) return true;
  }
  return false;
}

void Expected(const WktNode& node, const char* what) {
  ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected %s in %s.", node.place.line, node.place.column, what,
           node.text.substr(0, 40).c_str());
}
void Refuse(const WktNode& node, const char* reason) {
  ORV_FAIL(ErrBadParameter, "Line %d, column %d: the system cannot be expressed: %s.", node.place.line,
           node.place.column, reason);
}

void OnlyOnce(const WktNode& second, const char* what) {
  ORV_FAIL(ErrCorrupt, "Line %d, column %d: expected %s only once.", second.place.line, second.place.column,
           what);
}

const WktNode* FindOne(const WktNode& node, const char* const* keywords) {
  const WktNode* found = nullptr;
  for (const WktNode& item : node.items) {
    if (item.kind != WktNode::Block || !IsAny(item, keywords)) continue;
    if (found) OnlyOnce(item, item.text.substr(0, 40).c_str());
    found = &item;
  }
  return found;
}
const WktNode& Need(const WktNode& node, const char* const* keywords, const char* what) {
  const WktNode* const found = FindOne(node, keywords);
  if (!found) Expected(node, what);
  return *found;
}

const WktNode* UnitOf(const WktNode& node, const char* keyword) {
  const WktNode* const unit = FindOne(node, kUnits);
  if (unit && !unit->Is(keyword) && !unit->Is("UNIT")) Expected(node, keyword);
  return unit;
}
const std::string& NeedText(const WktNode& node, const char* what) {
  if (node.items.empty() || node.items[0].kind != WktNode::Text) Expected(node, what);
  return node.items[0].text;
}
double NeedNumber(const WktNode& node, size_t index, const char* what) {
  if (index >= node.items.size() || node.items[index].kind != WktNode::Number) Expected(node, what);
  return node.items[index].number;
}

int CodeOf(const WktNode& node) {
  int code = 0;
  for (const WktNode& item : node.items) {
    if (item.kind != WktNode::Block || !(item.Is("ID") || item.Is("AUTHORITY")) || item.items.size() < 2)
      continue;
    const std::string& digits = item.items[1].text;
    const bool isWhole = item.items[1].kind != WktNode::Block && !digits.empty() && digits.size() <= 9 &&
                         digits.find_first_not_of("0123456789") == std::string::npos;
    if (!isWhole || !EqualIgnoringCase(item.TextAt(0), "EPSG")) continue;
    const int own = ReadInteger(digits);
    if (code != 0 && own != code) OnlyOnce(item, "a code of EPSG");
    code = own;
  }
  return code;
}

double UnitSize(const WktNode& unit) {
  const double size = NeedNumber(unit, 1, "the size of the unit");
  if (!(size >= 1e-12) || !(size <= 1e12)) Expected(unit, "a size from 1e-12 to 1e12");
  return size;
}
TextUnit AngleOf(const WktNode& unit) {
  TextUnit angle = AngleUnit(ToDegrees(UnitSize(unit)));
  if (angle.code == 0) angle.name = unit.TextAt(0);
  return angle;
}
TextUnit LengthOf(const WktNode& unit) {
  const double size = UnitSize(unit);
  // Sizes come with 15 digits: the known unit has them all.
  TextUnit length = LengthUnit(size, 1e-13);
  if (length.code == 0) length = {unit.TextAt(0), 0, size};
  return length;
}

}  // namespace orv::internal
