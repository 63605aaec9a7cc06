// ProjectorAccess.h: lets tests give a Projector an engine and working parameters of their own.
#pragma once

#include <memory>
#include <utility>

#include "orv/projection/ProjActor.h"
#include "orv/projection/Projector.h"

namespace orv::internal {

struct ProjectorAccess {
  static void SetActor(Projector& projector, std::unique_ptr<ProjActor> actor) {
    projector.m_pActor = std::move(actor);
  }
  static ProjActor* Actor(Projector& projector) { return projector.m_pActor.get(); }
  static ProjectionParameters& Working(Projector& projector) { return projector.m_Working; }
  static ProjectionDef& Projection(Projector& projector) { return projector.m_Projection; }
};

}  // namespace orv::internal
