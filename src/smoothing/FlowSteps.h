#pragma once

namespace gravlin {

/// How far a flow runs: this many explicit time steps of this length. A count below 1 is none.
struct FlowSteps {
  int iterations = 0;
  float step = 0.0F;
};

}  // namespace gravlin
