#include "orv/core/internal/Fail.h"
#include "orv/warp/WarpDef.h"
#include "orv/warp/WarpTransformer.h"

ORV_UNIT("WarpResize")

namespace orv {

namespace {

constexpr int kStandInSize = 100;  // pixels; for a width or height that is none

}  // namespace

void WarpDef::CoefficientsToControls(int width, int height) {
  if (m_Method != WarpMethodAffineWithCoefficients) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER_STOP);
    return;
  }
  const double w = width < 1 ? kStandInSize : width;
  const double h = height < 1 ? kStandInSize : height;
  m_Source = {{0.0, 0.0}, {w, 0.0}, {w, h}, {0.0, h}};
  m_Destination.clear();
  for (const shr::Vec2d& p : m_Source) {
    m_Destination.emplace_back(m_Coeff[0] * p.x + m_Coeff[1] * p.y + m_Coeff[2],
                               m_Coeff[3] * p.x + m_Coeff[4] * p.y + m_Coeff[5]);
  }
  m_Method = WarpMethodAffinePolynomial;
}

void WarpDef::ControlsToCoefficients() {
  const bool known = m_Method != WarpMethodUnknown && m_Method <= WarpMethodInverseDistanceSquared;
  if (!known || m_Method == WarpMethodAffineWithCoefficients || m_Source.size() < 3 ||
      m_Destination.size() < 3) {
    ORV_FAIL(ErrBadParameter, ORV_BAD_PARAMETER_STOP);
    return;
  }
  WarpDef affine(*this);
  affine.m_Method = WarpMethodAffinePolynomial;
  const WarpTransformer fit(affine);  // reports a fit that cannot be made; lists of different lengths too
  if (fit.m_Def.m_Method != WarpMethodAffinePolynomial) return;
  const std::array<double, 10>& e = fit.m_e;  // terms 1, x, y
  const std::array<double, 10>& n = fit.m_n;
  const double six[6] = {e[1], e[2], e[0], n[1], n[2], n[0]};
  Flush();
  SetCoefficients(six[0], six[1], six[2], six[3], six[4], six[5]);
}

void WarpDef::Resize(int oldWidth, int oldHeight, int newWidth, int newHeight) {
  if (oldWidth < 1 || oldHeight < 1 || newWidth < 1 || newHeight < 1) {
    ORV_FAIL(ErrBadParameter, "Bad parameter to function call.  Image dimensions must be positive.");
    return;
  }
  const double sx = static_cast<double>(newWidth) / static_cast<double>(oldWidth);
  const double sy = static_cast<double>(newHeight) / static_cast<double>(oldHeight);
  const bool hadCoefficients = m_Method == WarpMethodAffineWithCoefficients;
  if (hadCoefficients) CoefficientsToControls(oldWidth, oldHeight);
  for (shr::Vec2d& p : m_Source) p = shr::Vec2d(p.x * sx, p.y * sy);
  if (hadCoefficients) ControlsToCoefficients();
}

}  // namespace orv
