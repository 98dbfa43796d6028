#include "remesh/MeshSubdivider.h"

#include "remesh/ButterflySubdivision.h"
#include "remesh/LinearSubdivision.h"
#include "remesh/LoopSubdivision.h"

namespace gravlin {

void MeshSubdivider::refine(SubdivisionScheme scheme) {
  switch (scheme) {
    case SubdivisionScheme::Loop:
      return loopSubdivision();
    case SubdivisionScheme::Butterfly:
      return butterflySubdivision();
    case SubdivisionScheme::Linear:
      return linearSubdivision();
  }
}

void MeshSubdivider::loopSubdivision() {
  *mesh = gravlin::loopSubdivision(*mesh);
}

void MeshSubdivider::butterflySubdivision() {
  *mesh = gravlin::butterflySubdivision(*mesh);
}

void MeshSubdivider::linearSubdivision() {
  *mesh = gravlin::linearSubdivision(*mesh);
}

}  // namespace gravlin
