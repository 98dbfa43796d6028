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
  if (mesh != nullptr) *mesh = gravlin::loopSubdivision(*mesh);
}

void MeshSubdivider::butterflySubdivision() {
  if (mesh != nullptr) *mesh = gravlin::butterflySubdivision(*mesh);
}

void MeshSubdivider::linearSubdivision() {
  if (mesh != nullptr) *mesh = gravlin::linearSubdivision(*mesh);
}

}  // namespace gravlin
